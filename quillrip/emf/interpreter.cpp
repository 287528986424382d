#include "quillrip/emf/interpreter.h"
#include "quillrip/base/reporter.h"

#include "quillrip/emf/command_table.h"
#include "quillrip/emf/machine.h"
#include "quillrip/emf/recognition.h"
#include "quillrip/emf/record.h"
#include "quillrip/emf/sheet.h"
#include "quillrip/emf/spool_reader.h"
#include "quillrip/fonts/glyph_painter.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace quillrip::emf {

namespace {

/// A single metafile, record by record up to its last one: what follows is another job's.
std::vector<std::uint8_t> readMetafile(InputStream& input, const Limits& limits, bool& isTooLarge)
{
    std::vector<std::uint8_t> bytes;
    for (;;) {
        const Fields head(input.window(Record::kSmallest));
        const std::uint32_t type = head.u32(0);
        const std::uint32_t size = head.u32(4);
        if (head.size() < Record::kSmallest || size < Record::kSmallest)
            return bytes;
        // A step at a time: a record may claim more than is there.
        std::uint64_t left = size;
        while (left > 0) {
            constexpr std::uint64_t kStep = 1 << 20;
            const std::size_t had = bytes.size();
            const auto step = static_cast<std::size_t>(std::min(left, kStep));
            bytes.resize(had + step);
            const std::size_t got = input.read(bytes.data() + had, step);
            bytes.resize(had + got);
            left -= got;
            isTooLarge = bytes.size() > limits.pageBytes;
            if (got < step || isTooLarge)
                return bytes;
        }
        if (type == kEndOfFileRecord)
            return bytes;
    }
}

/// Whether any record marks the page.
bool draws(ByteView metafile)
{
    const Fields fields(metafile);
    std::size_t at = 0;
    while (fields.has(at, Record::kSmallest)) {
        const std::uint32_t type = fields.u32(at);
        const std::uint32_t size = fields.u32(at + 4);
        const Command* const command = findCommand(type);
        if ((command && command->draws) || (type == kCommentRecord && fields.u32(at + 12) == kEmfPlusIdentifier))
            return true;
        if (size < Record::kSmallest || type == kEndOfFileRecord || size > metafile.size - at)
            return false;
        at += size;
    }
    return false;
}

} // namespace

class Interpreter::Implementation {
public:
    Implementation(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits)
        : m_device(device)
        , m_diagnostics(diagnostics)
        , m_reporter(&diagnostics)
        , m_limits(limits)
        , m_fonts(limits)
        , m_job { m_fonts, m_glyphs, m_limits, m_diagnostics }
    {
    }

    End run(InputStream& input)
    {
        const bool isSpool = looksLikeSpoolFile(input.window(InputStream::kLookAhead));
        return (isSpool ? runSpool(input) : runSingle(input)) ? End::InputEnded : End::Failed;
    }

    RunStatus status() const { return m_status; }

private:
    bool runSpool(InputStream& input)
    {
        SpoolReader reader(input, m_fonts, m_limits, m_diagnostics);
        while (const auto page = reader.next()) {
            if (page->isUnfinished && !draws(page->metafile))
                continue; // some systems leave an empty page behind the last one
            m_reporter.at(page->offset);
            if (page->isUnfinished || page->isCut)
                m_reporter.damage("emf.page-cut", "the last page is not complete");
            if (!runPage(page->metafile, page->offset, [&](const MetafileHeader& header) {
                    return std::optional<SheetPlan>(planSheet(header, page->settings));
                }))
                return false;
        }
        if (reader.hasMetLimit())
            m_status = RunStatus::LimitExceeded;
        return m_status == RunStatus::Done;
    }

    bool runSingle(InputStream& input)
    {
        const std::uint64_t offset = input.offset();
        m_reporter.at(offset);
        bool isTooLarge = false;
        const std::vector<std::uint8_t> metafile = readMetafile(input, m_limits, isTooLarge);
        if (isTooLarge) {
            m_reporter.damage("emf.page-size", "the metafile is larger than may be kept");
            m_status = RunStatus::LimitExceeded;
            return false;
        }
        return runPage(metafile, offset, &planFrame);
    }

    template <typename Planner> bool runPage(ByteView metafile, std::uint64_t offset, Planner planOf)
    {
        const auto header = MetafileHeader::read(metafile);
        if (!header) {
            m_reporter.damage("emf.header", "a page that is no metafile, left out");
            return true;
        }
        const std::optional<SheetPlan> plan = planOf(*header);
        if (!plan) {
            m_reporter.warn("emf.empty", "an empty metafile, left out");
            return true;
        }
        if (plan->isGuessed)
            m_reporter.warn("emf.sheet",
                "the picture has no room on the sheet that the job names; the nearest standard sheet is taken");
        PageCanvas canvas;
        m_status = m_device.beginPage(plan->request, canvas);
        if (m_status != RunStatus::Done)
            return false;
        const Place place { *canvas.painter, canvas.format, plan->referenceToPage * canvas.pageToDevice, nullptr };
        const Machine::End end = Machine(m_job, place, *header).play(metafile, offset);
        if (end == Machine::End::LimitExceeded) {
            m_status = RunStatus::LimitExceeded;
            return false;
        }
        m_status = m_device.endPage();
        return m_status == RunStatus::Done;
    }

    PageDevice& m_device;
    DiagnosticSink& m_diagnostics;
    Reporter m_reporter;
    const Limits& m_limits;
    WindowsFonts m_fonts;
    GlyphPainter m_glyphs;
    Job m_job;
    RunStatus m_status = RunStatus::Done;
};

Interpreter::Interpreter(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits)
    : m_implementation(std::make_unique<Implementation>(device, diagnostics, limits))
{
}

Interpreter::~Interpreter() = default;

Interpreter::End Interpreter::run(InputStream& input) { return m_implementation->run(input); }

RunStatus Interpreter::status() const { return m_implementation->status(); }

} // namespace quillrip::emf
