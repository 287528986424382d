#include "quillrip/emf/plus/object_store.h"
#include "tests/emf/plus/plus_job.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::emf::plus;
using namespace quillrip::emf::plus::test;

namespace {

constexpr std::uint16_t kBrush5 = 0x0105;
constexpr std::uint16_t kContinues = 0x8000;

/// Stores the records and gives the last thing that was told of them.
std::string define(ObjectStore& store, const std::vector<std::uint8_t>& records)
{
    RecordReader reader(records);
    std::string problem;
    for (Record record; reader.next(record) == RecordReader::Step::Record;)
        problem = store.define(record);
    return problem;
}

/// A brush of 100 bytes: what follows the colour says nothing.
std::vector<std::uint8_t> longBrush()
{
    std::vector<std::uint8_t> brush = solidBrush(0xFF123456);
    brush.resize(100);
    return brush;
}

std::vector<std::uint8_t> part(const std::vector<std::uint8_t>& bytes, std::size_t from, std::size_t count)
{
    return { bytes.begin() + static_cast<std::ptrdiff_t>(from),
        bytes.begin() + static_cast<std::ptrdiff_t>(from + count) };
}

bool hasBrush(const ObjectStore& store)
{
    const auto brush = store.find<BrushObject>(5);
    return brush && std::get<Rgba>(*brush) == Rgba { 0x12, 0x34, 0x56, 255 };
}

/// A piece with its total behind the size of the data.
Records& addPiece(Records& records, std::uint32_t total, const std::vector<std::uint8_t>& data)
{
    return records.add(0x4008, kBrush5 | kContinues, Fields().u32({ total }).bytes(data));
}

} // namespace

TEST(EmfPlusObjects, PiecesMakeOneObject)
{
    const std::vector<std::uint8_t> brush = longBrush();
    Records records;
    addPiece(records, 100, part(brush, 0, 40));
    addPiece(records, 100, part(brush, 40, 40));
    records.add(0x4008, kBrush5, part(brush, 80, 20));
    ObjectStore store;
    EXPECT_EQ(define(store, records.get()), "");
    EXPECT_TRUE(hasBrush(store));
}

TEST(EmfPlusObjects, TheLastPieceMayCarryTheFlagAndTheTotalToo)
{
    const std::vector<std::uint8_t> brush = longBrush();
    for (const std::uint16_t flag : { std::uint16_t { 0 }, kContinues }) {
        Records records;
        addPiece(records, 100, part(brush, 0, 60));
        records.add(0x4008, kBrush5 | flag, Fields().u32({ 100 }).bytes(part(brush, 60, 40)));
        ObjectStore store;
        EXPECT_EQ(define(store, records.get()), "");
        EXPECT_TRUE(hasBrush(store)) << flag;
    }
}

TEST(EmfPlusObjects, PaddingIsNoPartOfAPiece)
{
    const std::vector<std::uint8_t> brush = longBrush();
    Records records;
    addPiece(records, 100, part(brush, 0, 5));
    addPiece(records, 100, part(brush, 5, 2));
    addPiece(records, 100, part(brush, 7, 52));
    records.add(0x4008, kBrush5, part(brush, 59, 41));
    ObjectStore store;
    EXPECT_EQ(define(store, records.get()), "");
    EXPECT_TRUE(hasBrush(store));
}

TEST(EmfPlusObjects, TheTotalMayStandBeforeTheSizeOfTheData)
{
    const std::vector<std::uint8_t> brush = longBrush();
    Records records;
    records.raw(Fields().u16({ 0x4008, kBrush5 | kContinues }).u32({ 16 + 60, 100, 60 }).bytes(part(brush, 0, 60)));
    records.add(0x4008, kBrush5, part(brush, 60, 40));
    ObjectStore store;
    EXPECT_EQ(define(store, records.get()), "");
    EXPECT_TRUE(hasBrush(store));
}

TEST(EmfPlusObjects, AnotherRecordEndsAnObjectInPieces)
{
    Records records;
    addPiece(records, 100, part(longBrush(), 0, 60));
    ObjectStore store;
    define(store, records.get());
    EXPECT_NE(store.interrupt(), "");
    EXPECT_EQ(store.interrupt(), "");
    EXPECT_FALSE(store.find<BrushObject>(5));
}

TEST(EmfPlusObjects, MorePiecesThanTheTotalAreCut)
{
    const std::vector<std::uint8_t> brush = longBrush();
    Records records;
    addPiece(records, 12, brush);
    ObjectStore store;
    EXPECT_EQ(define(store, records.get()), "");
    EXPECT_TRUE(hasBrush(store));
}

TEST(EmfPlusObjects, NoPieceReservesWhatItsTotalSays)
{
    Records records;
    addPiece(records, 0xFFFFFFFF, part(longBrush(), 0, 8));
    ObjectStore store;
    EXPECT_NE(define(store, records.get()), "");
}

TEST(EmfPlusObjects, ABadObjectEmptiesItsSlot)
{
    Records records;
    records.object(1, 5, solidBrush(0xFF123456));
    ObjectStore store;
    define(store, records.get());
    EXPECT_TRUE(hasBrush(store));
    Records bad;
    bad.object(1, 5, Fields().u32({ kVersion, 77 }));
    EXPECT_EQ(define(store, bad.get()), "brush cannot be read");
    EXPECT_FALSE(store.find<BrushObject>(5));
    EXPECT_FALSE(store.find<PenObject>(5));
    EXPECT_FALSE(store.find<BrushObject>(4000000000));
}
