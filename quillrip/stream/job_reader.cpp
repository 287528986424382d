#include "quillrip/stream/job_reader.h"

#include "quillrip/stream/signatures.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

namespace quillrip::stream {

namespace {

constexpr std::size_t kPrefixLength = 4; ///< of @PJL
constexpr std::size_t kLongestLine = std::size_t { 64 } << 10;
constexpr std::size_t kSearchAfterData = 4096;
constexpr std::size_t kShortestTrailingText = 16;
constexpr std::size_t kLongestPrescribe = std::size_t { 1 } << 20;

enum class Speaks { Pcl, Pcl3, InkjetPcl, PclXl, Plot, PostScript, Pdf, Xps, Find };

struct LanguageName {
    const char* name;
    Speaks speaks;
};

// Names of ENTER LANGUAGE that quillrip answers to. All others are looked at, and refused by name.
const std::array s_languages {
    LanguageName { "PCL", Speaks::Pcl },
    LanguageName { "PCL5", Speaks::Pcl },
    LanguageName { "PCL5E", Speaks::Pcl },
    LanguageName { "PCL5C", Speaks::Pcl },
    LanguageName { "PCL3", Speaks::Pcl3 },
    LanguageName { "PCL3GUI", Speaks::InkjetPcl },
    LanguageName { "PCLXL", Speaks::PclXl },
    LanguageName { "PCL6", Speaks::PclXl },
    LanguageName { "HPGL", Speaks::Plot },
    LanguageName { "HPGL2", Speaks::Plot },
    LanguageName { "HP-GL", Speaks::Plot },
    LanguageName { "HP-GL/2", Speaks::Plot },
    LanguageName { "HPGL7585", Speaks::Plot },
    LanguageName { "HPGL/2", Speaks::Plot },
    LanguageName { "HP-GL2", Speaks::Plot },
    LanguageName { "HP-GL2/RTL", Speaks::Plot },
    LanguageName { "HP-GL/2-RTL", Speaks::Plot },
    LanguageName { "HPGL2/RTL", Speaks::Plot },
    LanguageName { "HPGL2RTL", Speaks::Plot },
    LanguageName { "HP-RTL", Speaks::Plot },
    LanguageName { "HPRTL", Speaks::Plot },
    LanguageName { "RTL", Speaks::Plot },
    LanguageName { "POSTSCRIPT", Speaks::PostScript },
    LanguageName { "POSTSCRIPT3", Speaks::PostScript },
    LanguageName { "PS", Speaks::PostScript },
    LanguageName { "KPDL", Speaks::PostScript },
    LanguageName { "PDF", Speaks::Pdf },
    LanguageName { "XPS", Speaks::Xps },
    LanguageName { "OPENXPS", Speaks::Xps },
    LanguageName { "OXPS", Speaks::Xps },
    LanguageName { "MSXPS", Speaks::Xps },
    LanguageName { "AUTO", Speaks::Find },
};

std::string upper(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
        [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
    return text;
}

bool isBlank(std::uint8_t byte) { return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n' || byte == 0; }

bool startsWithPrefix(ByteView bytes)
{
    return (hasAt(bytes, 0, "@PJL") || hasAt(bytes, 0, "@pjl")) && (bytes.size == 4 || isBlank(bytes[4]));
}

bool isLanguage(ContentKind kind)
{
    return kind == ContentKind::PclXl || kind == ContentKind::PostScript || kind == ContentKind::Pdf
        || kind == ContentKind::Xps;
}

bool entersLanguage(const std::string& line) { return parsePjlLine(line).command == "ENTER"; }

// An old writer's lines end with CR alone: that is believed when a new line or a Universal Exit follows. Some drivers
// forget the end of the line that enters a language: there it ends with the language's first command.
std::optional<std::string> takeLine(InputStream& input)
{
    std::string line;
    for (;;) {
        if (input.peek() == kEscape
            && (startsWithUniversalExit(input.window(kUniversalExitLength)) || entersLanguage(line)))
            break;
        const int c = input.get();
        if (c < 0 || c == '\n')
            break;
        if (c == '\r') {
            const ByteView next = input.window(5);
            if (startsWithPrefix(next) || (!next.empty() && next[0] == 0x1B))
                break;
        }
        if (line.size() >= kLongestLine)
            return std::nullopt;
        line.push_back(static_cast<char>(c));
    }
    while (!line.empty() && isBlank(static_cast<std::uint8_t>(line.back())))
        line.pop_back();
    return line;
}

} // namespace

JobReader::JobReader(InputStream& input, DiagnosticSink& diagnostics, PlotTest isPlot)
    : m_input(input)
    , m_reporter(&diagnostics)
    , m_isPlot(isPlot)
{
}

void JobReader::warn(const char* kind, std::string message, std::uint64_t offset)
{
    m_reporter.at(offset);
    m_reporter.warn(kind, std::move(message));
}

void JobReader::resetEnvironment()
{
    m_environment = {};
    m_hasDataSinceReset = false;
}

void JobReader::passOver(const std::string& name, std::uint64_t offset)
{
    if (m_foreignName.empty()) {
        m_foreignName = name;
        m_foreignOffset = offset;
    }
    skipRest();
}

// A Universal Exit outside of JOB and EOJ ends a job. Drivers put one before every line, so settings only fall when
// pages came after them.
void JobReader::universalExitTaken()
{
    m_isReadingPjl = true;
    m_isNamedPlot = false;
    if (!m_isInsideJob && m_hasDataSinceReset) {
        resetEnvironment();
        m_job = { m_job.serial + 1, 1, UINT64_MAX };
    }
}

void JobReader::skipRest()
{
    for (;;) {
        const ByteView window = m_input.window(InputStream::kLookAhead);
        if (window.empty())
            return;
        std::size_t at = 0;
        while (at < window.size) {
            const auto* escape
                = static_cast<const std::uint8_t*>(std::memchr(window.data + at, 0x1B, window.size - at));
            if (!escape) {
                at = window.size;
                break;
            }
            at = static_cast<std::size_t>(escape - window.data);
            // Near the window's end the judgement needs to see more.
            if (at > 0 && window.size - at < kSearchAfterData)
                break;
            if (isBelievableUniversalExit(window.sub(at))) {
                m_input.skip(at);
                return;
            }
            ++at;
        }
        m_input.skip(at);
    }
}

Content JobReader::look(bool isNamed)
{
    const ByteView window = m_input.window(InputStream::kLookAhead);
    return recognise(window, { window.size < InputStream::kLookAhead, m_input.offset() == 0, isNamed, m_isPlot });
}

std::optional<Part> JobReader::next()
{
    for (;;) {
        if (m_isReadingPjl) {
            if (auto part = readPjl())
                return part;
        }
        const Content content = look(false);
        if (content.kind == ContentKind::Nothing) {
            if (content.padding == 0)
                return std::nullopt;
            m_input.skip(content.padding);
        } else if (content.kind == ContentKind::Pjl) {
            m_input.skip(content.padding);
            m_isReadingPjl = true;
        } else if (content.kind == ContentKind::Prescribe) {
            m_input.skip(content.padding);
            skipPrescribe();
        } else if (auto part = partOf(content)) {
            return part;
        }
    }
}

std::optional<Part> JobReader::partOf(const Content& content)
{
    m_input.skip(content.padding);
    const std::uint64_t offset = m_input.offset();
    Part part { content.kind, offset };
    if (m_isNamedPlot && content.kind == ContentKind::Pcl)
        part.kind = ContentKind::Plot; // what the plotter's raster language shares with PCL
    switch (content.kind) {
    case ContentKind::Text:
        part.kind = ContentKind::Pcl;
        if (m_hadPart && m_input.window(kShortestTrailingText).size < kShortestTrailingText) {
            warn("stream.trailing-text", "a few characters behind the last job were left out", offset);
            m_input.skip(kShortestTrailingText);
            return std::nullopt;
        }
        break;
    case ContentKind::Unknown:
        if (m_environment.personality == "PCL")
            part.kind = ContentKind::Pcl;
        else {
            passOver(content.name, offset);
            return std::nullopt;
        }
        break;
    case ContentKind::Foreign:
        passOver(content.name, offset);
        return std::nullopt;
    default:
        break;
    }
    m_hadPart = true;
    m_hasDataSinceReset = true;
    return part;
}

std::optional<Part> JobReader::readPjl()
{
    for (;;) {
        // Blank lines and padding between the lines belong to nobody.
        for (int c = m_input.peek(); c >= 0 && isBlank(static_cast<std::uint8_t>(c)); c = m_input.peek())
            m_input.get();
        const std::uint64_t offset = m_input.offset();
        const ByteView window = m_input.window(kUniversalExitLength);
        if (startsWithUniversalExit(window)) {
            m_input.skip(kUniversalExitLength);
            universalExitTaken();
            continue;
        }
        // Half an exit is all that some writers manage before the file ends.
        if (window.size < kUniversalExitLength && !window.empty() && window[0] == 0x1B
            && hasAt({ reinterpret_cast<const std::uint8_t*>("\x1B%-12345X"), kUniversalExitLength }, 0,
                reinterpret_cast<const char*>(window.data), window.size)
            && window.size > 1) {
            m_input.skip(window.size);
            continue;
        }
        if (!startsWithPrefix(window)) {
            m_isReadingPjl = false;
            return std::nullopt;
        }
        const auto line = takePjlLine();
        if (!line) {
            warn("pjl.line-too-long", "a job language line of more than 64 KiB was left out", offset);
            skipRest();
            continue;
        }
        if (line->command == "ENTER") {
            m_isReadingPjl = false;
            return enterLanguage(upper(line->option("LANGUAGE").value_or("AUTO")));
        }
        obey(*line, offset);
    }
}

std::optional<PjlLine> JobReader::takePjlLine()
{
    m_reporter.at(m_input.offset());
    m_input.skip(kPrefixLength);
    const auto text = takeLine(m_input);
    if (!text)
        return std::nullopt;
    if (m_reporter.isTracing())
        m_reporter.trace("@PJL" + *text);
    return parsePjlLine(*text);
}

void JobReader::obey(const PjlLine& line, std::uint64_t offset)
{
    if (line.command == "SET") {
        if (!line.options.empty())
            m_environment.set(upper(line.modifier("LPARM").value_or("")), line.options[0].name, line.options[0].value);
    } else if (line.command == "JOB") {
        resetEnvironment();
        m_isInsideJob = true;
        m_job = { m_job.serial + 1, parseWholeNumber(line.option("START").value_or("")).value_or(1),
            parseWholeNumber(line.option("END").value_or("")).value_or(UINT64_MAX) };
    } else if (line.command == "EOJ") {
        resetEnvironment();
        m_isInsideJob = false;
        m_job = { m_job.serial + 1, 1, UINT64_MAX };
    } else if (line.command == "RESET" || line.command == "INITIALIZE") {
        resetEnvironment();
    } else if (line.command == "FSDOWNLOAD" || line.command == "FSAPPEND") {
        skipTransferredData(line);
    } else if (line.command == "UPGRADE") {
        if (m_foreignName.empty()) {
            m_foreignName = "a printer's firmware, nothing to print";
            m_foreignOffset = offset;
        }
        skipTransferredData(line);
    }
}

// SIZE counts the bytes from here to the Universal Exit that ends the data. Where it does not lead there, the exit is
// looked for: a little further on, or from the start when the size is none or leads out of the input.
void JobReader::skipTransferredData(const PjlLine& line)
{
    const std::uint64_t offset = m_input.offset();
    const auto size = parseWholeNumber(line.option("SIZE").value_or(""));
    // What lies further on than can be seen is believed.
    const bool isSizeUseful = size
        && m_input.window(InputStream::kLookAhead).size >= std::min<std::uint64_t>(*size, InputStream::kLookAhead);
    if (isSizeUseful && m_input.skip(*size) == *size && startsWithUniversalExit(m_input.window(kUniversalExitLength)))
        return;
    warn("pjl.transfer-size", "transferred data has another size than its job language line says", offset);
    skipRest();
}

// An unmistakable beginning counts more than the name; drivers and people get the name wrong.
std::optional<Part> JobReader::enterLanguage(std::string name)
{
    Content content = look(true);
    // Some drivers write lines of the job language behind the one that enters: the language stays entered, up to
    // another one that enters.
    while (content.kind == ContentKind::Pjl
        && startsWithPrefix(m_input.window(content.padding + 5).sub(content.padding))) {
        m_input.skip(content.padding);
        const std::uint64_t lineOffset = m_input.offset();
        const auto line = takePjlLine();
        if (line && line->command == "ENTER")
            name = upper(line->option("LANGUAGE").value_or("AUTO"));
        else if (line)
            obey(*line, lineOffset);
        content = look(true);
    }
    const auto find = [&name] {
        return std::find_if(s_languages.begin(), s_languages.end(),
            [&name](const LanguageName& language) { return name == language.name; });
    };
    auto entry = find();
    // Makers name their dialects of PCL (PCL600, PCLSLEEK). What begins like PCL is drawn as that.
    if (entry == s_languages.end() && name.compare(0, 3, "PCL") == 0 && content.kind == ContentKind::Pcl) {
        name = "PCL";
        entry = find();
    }
    if (content.kind == ContentKind::Nothing || content.kind == ContentKind::Pjl) {
        m_isReadingPjl = content.kind == ContentKind::Pjl;
        m_input.skip(content.padding);
        return std::nullopt;
    }
    const std::uint64_t offset = m_input.offset();
    if (entry == s_languages.end() && !isLanguage(content.kind)) {
        passOver(content.kind == ContentKind::Foreign ? content.name : "a job in the printer language " + name, offset);
        return std::nullopt;
    }
    const Speaks speaks = entry == s_languages.end() ? Speaks::Find : entry->speaks;
    Part part { content.kind, offset };
    part.isNamed = true;
    switch (speaks) {
    case Speaks::Pcl:
    case Speaks::Pcl3:
    case Speaks::InkjetPcl:
        part.kind = ContentKind::Pcl;
        part.isInkjet = speaks == Speaks::Pcl3;
        part.isInkjetRaster = speaks == Speaks::InkjetPcl;
        break;
    case Speaks::PclXl:
        part.kind = ContentKind::PclXl;
        break;
    case Speaks::Plot:
        part.kind = ContentKind::Plot;
        m_isNamedPlot = true;
        break;
    case Speaks::PostScript:
        part.kind = ContentKind::PostScript;
        break;
    case Speaks::Pdf:
        part.kind = ContentKind::Pdf;
        break;
    case Speaks::Xps:
        part.kind = ContentKind::Xps;
        break;
    case Speaks::Find:
        return partOf(content);
    }
    const bool isPcl = part.kind == ContentKind::Pcl;
    if (content.kind != part.kind) {
        if (isLanguage(content.kind)) {
            if (!(part.kind == ContentKind::PostScript && content.kind == ContentKind::Pdf))
                warn("pjl.other-language", "the job is in another language than its job language line says", offset);
            return partOf(content);
        }
        // An ink-jet's dialect differs in ways that only its name tells; PCL XL may begin behind its header.
        if (content.kind == ContentKind::Foreign && !isPcl) {
            passOver(content.name, offset);
            return std::nullopt;
        }
        if (content.kind == ContentKind::Pcl && part.kind == ContentKind::PclXl) {
            warn("pjl.other-language", "the job is in another language than its job language line says", offset);
            return partOf(content);
        }
    }
    // PCL and PostScript begin right behind the line; blank lines in front may count.
    if (part.kind == content.kind
        && (part.kind == ContentKind::PclXl || part.kind == ContentKind::Pdf || part.kind == ContentKind::Xps))
        m_input.skip(content.padding);
    m_hadPart = true;
    m_hasDataSinceReset = true;
    part.offset = m_input.offset();
    return part;
}

void JobReader::skipPrescribe()
{
    const std::uint64_t offset = m_input.offset();
    warn("stream.prescribe", "Prescribe commands were left out", offset);
    std::string last;
    while (m_input.offset() - offset < kLongestPrescribe) {
        const int c = m_input.get();
        if (c < 0)
            return;
        last.push_back(static_cast<char>(c >= 'a' && c <= 'z' ? c - 32 : c));
        if (last.size() > 5)
            last.erase(0, 1);
        if (last == "EXIT;")
            return;
    }
}

} // namespace quillrip::stream
