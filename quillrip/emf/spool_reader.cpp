#include "quillrip/emf/spool_reader.h"

#include "quillrip/emf/embedded_fonts.h"
#include "quillrip/emf/record.h"

#include <algorithm>
#include <string>

namespace quillrip::emf {

namespace {

enum : std::uint32_t {
    kMetafile = 0x01,
    kDevmode = 0x03,
    kMetafileData = 0x0C,
    kMetafileExt = 0x0D,
    kMonochromeExt = 0x0E,
    kLastKnown = 0x15,
};

constexpr std::size_t kHeaderFields = 16;
constexpr std::size_t kHeadSize = 8;
/// Settings are a few kilobytes; what a driver adds of its own is not read.
constexpr std::uint64_t kLargestSettings = 1 << 20;
constexpr std::uint64_t kLargestFontRecord = std::uint64_t { 80 } << 20;

bool isLandscape(const SpooledPage& page)
{
    const auto header = MetafileHeader::read(page.metafile);
    return header
        && header->device.width / header->pixelsPerMillimeter().width
        > header->device.height / header->pixelsPerMillimeter().height;
}

} // namespace

SpoolReader::SpoolReader(InputStream& input, WindowsFonts& fonts, const Limits& limits, DiagnosticSink& diagnostics)
    : m_input(input)
    , m_fonts(fonts)
    , m_limits(limits)
    , m_reporter(&diagnostics)
    , m_start(input.offset())
{
    const Fields header(m_input.window(kHeaderFields));
    m_input.skip(header.u32(4));
}

void SpoolReader::damage(std::uint64_t offset, const char* kind, const std::string& message)
{
    m_reporter.at(offset);
    m_reporter.damage(kind, message);
}

bool SpoolReader::readHead(RecordHead& head)
{
    const Fields fields(m_input.window(kHeadSize));
    head.offset = m_input.offset();
    if (fields.size() < kHeadSize || fields.u32(0) == 0)
        return false;
    head.id = fields.u32(0);
    // A size that is no multiple of four was meant to be.
    head.size = (std::uint64_t { fields.u32(4) } + 3) / 4 * 4;
    if (head.id > 0xFFFF) {
        damage(head.offset, "emf.spool-record", "a spool record of an impossible kind");
        return false;
    }
    m_input.skip(kHeadSize);
    return true;
}

/// As much as is there; nothing is reserved for what the job merely claims.
std::vector<std::uint8_t> SpoolReader::readData(std::uint64_t size)
{
    std::vector<std::uint8_t> data;
    constexpr std::uint64_t kStep = 1 << 20;
    while (data.size() < size) {
        const auto wanted = static_cast<std::size_t>(
            std::min<std::uint64_t>(size - data.size(), std::max<std::uint64_t>(kStep, data.size())));
        const std::size_t had = data.size();
        data.resize(had + wanted);
        const std::size_t got = m_input.read(data.data() + had, wanted);
        data.resize(had + got);
        if (got < wanted)
            break;
    }
    return data;
}

std::optional<SpooledPage> SpoolReader::takeHeld()
{
    if (!m_held)
        return std::nullopt;
    SpooledPage page = std::move(*m_held);
    m_held.reset();
    page.isUnfinished = m_hasCompletedPage && !m_isHeldComplete;
    // Its own settings stand behind it; those in front may be its own too where the picture says so.
    const bool isWide = isLandscape(page);
    const bool prefersFormer
        = m_ownSettings && m_settings && m_ownSettings->isLandscape != isWide && m_settings->isLandscape == isWide;
    page.settings = m_ownSettings && !prefersFormer ? m_ownSettings : m_settings;
    if (m_ownSettings)
        m_settings = m_ownSettings;
    m_ownSettings.reset();
    m_isHeldComplete = false;
    return page;
}

void SpoolReader::complete(const RecordHead& head)
{
    const std::vector<std::uint8_t> data = readData(head.size);
    const Fields fields { ByteView(data) };
    // Back from the start of this record to the page's.
    const std::uint64_t back = fields.u32(0) | std::uint64_t { fields.u32(4) } << 32;
    const std::uint64_t place = head.offset - m_start;
    if (back > place) {
        damage(head.offset, "emf.spool-back", "a spool record that points before the file");
        return;
    }
    if (m_held && head.offset - back == m_heldOffset) {
        m_isHeldComplete = true;
        m_hasCompletedPage = true;
    }
}

std::optional<SpooledPage> SpoolReader::next()
{
    RecordHead head;
    while (!m_isAtEnd) {
        if (m_isHeldComplete)
            return takeHeld();
        const Fields coming(m_input.window(4));
        const std::uint32_t id = coming.u32(0);
        if (m_held && (id == kMetafile || id == kMetafileData))
            return takeHeld();
        if (!readHead(head))
            break;
        switch (head.id) {
        case kMetafile:
        case kMetafileData:
            m_held.emplace();
            m_heldOffset = head.offset;
            m_held->offset = m_input.offset();
            m_held->metafile = readData(std::min(head.size, m_limits.pageBytes + 1));
            if (m_held->metafile.size() > m_limits.pageBytes) {
                m_hasMetLimit = true;
                damage(head.offset, "emf.page-size", "a page's metafile is larger than may be kept");
                m_isAtEnd = true;
                return std::nullopt;
            }
            m_held->isCut = m_held->metafile.size() < head.size;
            break;
        case kDevmode: {
            const std::vector<std::uint8_t> data = readData(std::min(head.size, kLargestSettings));
            m_input.skip(head.size - std::min(head.size, kLargestSettings));
            if (const auto settings = Devmode::read(data))
                (m_held ? m_ownSettings : m_settings) = settings;
            break;
        }
        case kMetafileExt:
        case kMonochromeExt:
            complete(head);
            break;
        default:
            if (isFontRecord(head.id) && head.size <= kLargestFontRecord) {
                const std::vector<std::uint8_t> data = readData(head.size);
                m_reporter.at(head.offset);
                takeFontRecord(m_fonts, head.id, data, m_reporter);
                break;
            }
            if (head.id > kLastKnown && m_unknown.insert(head.id).second && m_unknown.size() < 16) {
                m_reporter.at(head.offset);
                m_reporter.warn("emf.spool-unknown", "a spool record of an unknown kind, passed over");
            }
            if (m_input.skip(head.size) < head.size) {
                damage(head.offset, "emf.spool-cut", "the job ends within a record");
                m_isAtEnd = true;
            }
            break;
        }
    }
    m_isAtEnd = true;
    return takeHeld();
}

} // namespace quillrip::emf
