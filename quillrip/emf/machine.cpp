#include "quillrip/emf/machine.h"

#include "quillrip/emf/command_table.h"
#include "quillrip/emf/plus/dual_choice.h"
#include "quillrip/emf/record.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace quillrip::emf {

namespace {

constexpr int kDeepestMetafile = 8;
/// Work of a record without what it draws.
constexpr std::uint64_t kUnitsPerRecord = 200;
constexpr std::size_t kMostSavedContexts = 4096;
/// 12 points, the size of stock fonts.
constexpr double kStockFontInches = 12.0 / 72;

std::int32_t stockFontHeight(const MetafileHeader& header)
{
    return -static_cast<std::int32_t>(header.dotsPerInch().height * kStockFontInches + 0.5);
}

std::string hexadecimal(std::uint32_t number)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%02X", number);
    return text;
}

} // namespace

Machine::Machine(const Job& job, const Place& place, const MetafileHeader& header)
    : m_job(job)
    , m_reporter(&job.diagnostics)
    , m_place(place)
    , m_header(header)
    , m_dc(header)
    , m_objects(stockFontHeight(header))
    , m_canvas(place.painter, place.format, place.referenceToDevice, place.limit, m_dc)
    , m_plus(plusHost())
{
    m_dc.pen = m_objects.find(kBlackPen);
    m_dc.brush = m_objects.find(kWhiteBrush);
    m_dc.font = m_objects.find(kDeviceDefaultFont);
    m_dc.palette = m_objects.find(kDefaultPalette);
}

Machine::~Machine() = default;

plus::Host Machine::plusHost()
{
    const auto playMetafile = [this](ByteView metafile, const Matrix& toDevice, Region clip) {
        if (m_place.depth + 1 >= kDeepestMetafile)
            return warn("emf.depth", "metafiles within metafiles, the innermost are left out");
        playWithin(m_job, m_place.painter, m_place.format, metafile, m_reporter.offset(), toDevice, std::move(clip),
            m_place.depth + 1);
    };
    const Size resolution = m_header.dotsPerInch();
    return { m_place.painter, m_place.format, m_place.referenceToDevice, { resolution.width, resolution.height },
        m_place.limit, m_job.fonts, m_job.glyphs, m_job.limits, m_job.diagnostics, playMetafile };
}

Machine::End Machine::play(ByteView metafile, std::uint64_t offset)
{
    std::size_t at = m_header.size;
    m_reporter.at(offset);
    if (at > metafile.size || at % 4 != 0) {
        m_reporter.damage("emf.header", "the metafile ends within its header");
        return End::Damaged;
    }
    if (plus::isPlainHalfFuller(metafile.sub(at)))
        m_plus.standBack();
    while (metafile.size - at >= Record::kSmallest) {
        const Fields head(metafile.sub(at, Record::kSmallest));
        const std::uint32_t size = head.u32(4);
        m_reporter.at(offset + at);
        const bool isSizeGood = size >= Record::kSmallest && size % 4 == 0;
        if (!isSizeGood || size > metafile.size - at) {
            m_reporter.damage(
                "emf.record-size", isSizeGood ? "the metafile ends within a record" : "a record of an impossible size");
            return End::Damaged;
        }
        const Record record(metafile.sub(at, size), m_reporter.offset());
        if (record.type() == kEndOfFileRecord)
            return End::Done;
        runRecord(record);
        if (!m_job.limits.work->allows(Work::Commands, kUnitsPerRecord)) {
            m_reporter.damage("emf.work", m_job.limits.work->reason());
            return End::LimitExceeded;
        }
        at += size;
    }
    m_reporter.at(offset + at);
    m_reporter.damage("emf.no-end", "the metafile ends without its last record");
    return End::Damaged;
}

void Machine::runRecord(const Record& record)
{
    const Command* const command = findCommand(record.type());
    if (m_reporter.isTracing())
        trace(record, command);
    if (!command)
        return warn("emf.unknown", "record of an unknown kind (" + hexadecimal(record.type()) + ") passed over");
    if (!command->handler)
        return;
    if (record.size() < command->smallestSize)
        return warn("emf.short", std::string(command->name) + " record too short for its fields, passed over");
    if (command->draws) {
        if (!m_plus.letsRecordsThrough())
            return;
        m_canvas.setOuterClip(m_plus.clipForRecords());
        m_hasDrawn = true;
    }
    command->handler(*this, record);
}

void Machine::trace(const Record& record, const Command* command) const
{
    // Most fields are numbers of four bytes; those at the beginning tell boxes, colours and objects.
    constexpr std::size_t kFieldsShown = 8;
    std::vector<std::int32_t> fields;
    for (std::size_t at = Record::kSmallest; at + 4 <= record.size() && fields.size() < kFieldsShown; at += 4)
        fields.push_back(record.i32(at));
    const std::string name = command ? command->name : "record " + hexadecimal(record.type());
    const std::size_t left = record.size() - Record::kSmallest - 4 * fields.size();
    m_reporter.trace(left == 0 ? name : name + " (" + std::to_string(left) + " bytes more)", fields);
}

void Machine::save()
{
    if (m_saved.size() >= kMostSavedContexts) {
        ++m_unsaved;
        return;
    }
    const std::size_t points = m_dc.path.path.pointCount();
    if (m_savedPoints + points > m_job.limits.pathPoints) {
        // The context as it is, but for its path, which few programs save.
        PathState path = std::move(m_dc.path);
        m_dc.path = {};
        m_saved.push_back(m_dc);
        m_dc.path = std::move(path);
        return;
    }
    m_savedPoints += points;
    m_saved.push_back(m_dc);
}

void Machine::restore(std::int32_t level)
{
    const std::uint64_t depth = m_saved.size() + m_unsaved;
    if (level >= 0 || static_cast<std::uint64_t>(-std::int64_t { level }) > depth)
        return warn("emf.restore", "RESTOREDC of a state that was not saved, ignored");
    for (std::uint64_t left = static_cast<std::uint64_t>(-std::int64_t { level }); left > 0; --left) {
        if (m_unsaved > 0) {
            --m_unsaved;
            continue;
        }
        m_savedPoints -= std::min(m_savedPoints, m_saved.back().path.path.pointCount());
        if (left == 1)
            m_dc = std::move(m_saved.back());
        m_saved.pop_back();
    }
}

void Machine::figure(const Path& logical, Draw draw)
{
    const Path path = logical.transformed(m_dc.coordinates.toReference());
    if (draw == Draw::FillAndStroke)
        return figure(path, path);
    if (m_dc.path.isRecording)
        return addToPath(path);
    m_canvas.strokeWithPen(path);
}

void Machine::figure(const Path& fill, const Path& stroke)
{
    if (m_dc.path.isRecording)
        return addToPath(fill);
    m_canvas.fillAndStroke(fill, stroke, m_canvas.fillRule());
}

void Machine::addToPath(const Path& path)
{
    if (m_dc.path.path.pointCount() + path.pointCount() > m_job.limits.pathPoints)
        return warn("emf.path", "a path of too many points, cut");
    m_dc.path.path.append(path);
    m_dc.path.needsMove = true;
}

void Machine::segments(const Path& logical, Point end)
{
    const Matrix& toReference = m_dc.coordinates.toReference();
    Path path = logical.transformed(toReference);
    if (m_dc.path.isRecording) {
        PathState& state = m_dc.path;
        if (state.path.pointCount() + path.pointCount() > m_job.limits.pathPoints)
            return warn("emf.path", "a path of too many points, cut");
        if (state.needsMove)
            state.path.moveTo(toReference.apply(m_dc.position));
        state.needsMove = false;
        // Without the move that every path begins with.
        Path joined;
        std::size_t at = 1;
        for (std::size_t i = 1; i < path.verbs().size(); ++i) {
            const Point* points = path.points().data() + at;
            switch (path.verbs()[i]) {
            case Path::Verb::Move:
                state.path.moveTo(points[0]);
                ++at;
                break;
            case Path::Verb::Line:
                state.path.lineTo(points[0]);
                ++at;
                break;
            case Path::Verb::Cubic:
                state.path.cubicTo(points[0], points[1], points[2]);
                at += 3;
                break;
            case Path::Verb::Close:
                state.path.close();
                break;
            }
        }
    } else {
        m_canvas.strokeWithPen(path);
    }
    m_dc.position = end;
}

PathState Machine::takePath()
{
    PathState state = std::move(m_dc.path);
    m_dc.path = {};
    if (!state.isDefined || state.isRecording) {
        warn("emf.no-path", "a path is used that was not made, ignored");
        return {};
    }
    return state;
}

double Machine::pixelAspect() const
{
    // Sizes in whole millimetres make square pixels look a little oblong.
    constexpr double kTolerance = 0.03;
    const Size resolution = m_header.dotsPerInch();
    const double aspect = resolution.width / resolution.height;
    return std::abs(aspect - 1) > kTolerance ? aspect : 1;
}

const WindowsFont& Machine::font(bool usesIndices)
{
    if (m_fontObject == m_dc.font && m_fontChecksum == m_dc.fontChecksum && m_fontUsesIndices == usesIndices)
        return m_font;
    const auto& logical = std::get<LogicalFont>(*m_dc.font);
    WindowsFontRequest request;
    request.face = logical.face;
    request.weight = logical.weight;
    request.isItalic = logical.isItalic;
    request.charset = logical.charset;
    request.pitchAndFamily = logical.pitchAndFamily;
    request.checksum = m_dc.fontChecksum;
    request.usesIndices = usesIndices;
    m_font = m_job.fonts.select(request, m_reporter);
    m_fontObject = m_dc.font;
    m_fontChecksum = m_dc.fontChecksum;
    m_fontUsesIndices = usesIndices;
    return m_font;
}

void Machine::warn(const char* kind, const std::string& message)
{
    if (m_warned.insert(kind).second)
        m_reporter.warn(kind, message);
}

Matrix referenceToFrame(const MetafileHeader& header)
{
    const Size scale = header.pixelsPerMillimeter();
    constexpr double kFrameUnits = 100; // per millimetre
    const double left = header.frame.left / kFrameUnits * scale.width;
    const double top = header.frame.top / kFrameUnits * scale.height;
    const double width = (double(header.frame.right) - header.frame.left) / kFrameUnits * scale.width;
    const double height = (double(header.frame.bottom) - header.frame.top) / kFrameUnits * scale.height;
    return Matrix::translation(-left, -top) * Matrix::scaling(1 / width, 1 / height);
}

void playWithin(const Job& job, Painter& painter, PixelFormat format, ByteView metafile, std::uint64_t offset,
    const Matrix& unitSquareToDevice, Region clip, int depth)
{
    const auto header = MetafileHeader::read(metafile);
    if (!header || !header->hasFrame())
        return job.diagnostics.report({ Severity::Warning, offset, "emf.within", "a picture that is no metafile" });
    const Place place { painter, format, referenceToFrame(*header) * unitSquareToDevice, std::move(clip), depth };
    Machine(job, place, *header).play(metafile, offset);
}

} // namespace quillrip::emf
