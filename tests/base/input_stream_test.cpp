#include "quillrip/base/input_stream.h"

#include <cstdio>
#include <gtest/gtest.h>
#include <unistd.h>

using namespace quillrip;

namespace {

/// A file of `size` bytes whose byte at n is n % 251, open for reading from its start.
int countingFile(std::size_t size)
{
    std::FILE* file = std::tmpfile();
    for (std::size_t n = 0; n < size; ++n)
        std::fputc(static_cast<int>(n % 251), file);
    std::fflush(file);
    const int descriptor = ::dup(::fileno(file));
    std::fclose(file);
    ::lseek(descriptor, 0, SEEK_SET);
    return descriptor;
}

} // namespace

TEST(InputStream, ReadsAFileLongerThanItsWindow)
{
    const std::size_t size = 5 * InputStream::kLookAhead + 7;
    FileInputStream stream { countingFile(size) };
    for (std::size_t n = 0; n < size; ++n) {
        ASSERT_EQ(stream.offset(), n);
        ASSERT_EQ(stream.get(), static_cast<int>(n % 251));
    }
    EXPECT_EQ(stream.get(), -1);
    EXPECT_TRUE(stream.atEnd());
    EXPECT_FALSE(stream.failed());
}

TEST(InputStream, LookingAheadTakesNothing)
{
    FileInputStream stream { countingFile(3 * InputStream::kLookAhead) };
    stream.skip(InputStream::kLookAhead + 5);
    const ByteView ahead = stream.window(InputStream::kLookAhead);
    ASSERT_GE(ahead.size, InputStream::kLookAhead);
    EXPECT_EQ(ahead[0], (InputStream::kLookAhead + 5) % 251);
    EXPECT_EQ(stream.offset(), InputStream::kLookAhead + 5);
    EXPECT_EQ(stream.peek(), ahead[0]);
}

TEST(InputStream, SkipAndReadStopAtTheEnd)
{
    FileInputStream stream { countingFile(100) };
    EXPECT_EQ(stream.skip(90), 90u);
    std::uint8_t bytes[20];
    EXPECT_EQ(stream.read(bytes, 20), 10u);
    EXPECT_EQ(bytes[9], 99);
    EXPECT_EQ(stream.skip(1), 0u);
    EXPECT_EQ(stream.window(4).size, 0u);
}

TEST(InputStream, MemoryStreamHasOffsetsToo)
{
    const std::vector<std::uint8_t> bytes { 10, 20, 30 };
    MemoryInputStream stream { bytes };
    EXPECT_EQ(stream.window(2).size, 3u);
    EXPECT_EQ(stream.get(), 10);
    EXPECT_EQ(stream.offset(), 1u);
    EXPECT_EQ(stream.get(), 20);
    EXPECT_EQ(stream.get(), 30);
    EXPECT_EQ(stream.get(), -1);
    EXPECT_EQ(stream.offset(), 3u);
}
