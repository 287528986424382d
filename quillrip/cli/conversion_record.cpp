#include "quillrip/cli/conversion_record.h"

#include "quillrip/cli/version.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

#include <nlohmann/json.hpp>

namespace quillrip::cli {

namespace {

using Json = nlohmann::ordered_json;

constexpr int kExitDone = 0;
constexpr int kExitDamaged = 4;

double secondsOf(const struct timeval& time)
{
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

double processorSecondsOf(int who)
{
    struct rusage usage { };
    return ::getrusage(who, &usage) == 0 ? secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime) : 0;
}

double inMilliseconds(double seconds) { return std::round(seconds * 1000) / 1000; }

std::string isoTime(std::time_t time)
{
    std::array<char, 32> text {};
    std::tm parts {};
    ::gmtime_r(&time, &parts);
    const std::size_t length = std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return { text.data(), length };
}

bool isUtf8(const std::string& text)
{
    try {
        static_cast<void>(Json(text).dump());
        return true;
    } catch (const Json::type_error&) {
        return false;
    }
}

std::string hexOf(const std::string& bytes)
{
    std::string hex;
    for (const char byte : bytes) {
        constexpr const char* digits = "0123456789abcdef";
        hex += digits[static_cast<unsigned char>(byte) >> 4];
        hex += digits[static_cast<unsigned char>(byte) & 15];
    }
    return hex;
}

} // namespace

ResourceMeter::ResourceMeter()
    : m_status(::open("/proc/self/status", O_RDONLY | O_CLOEXEC))
{
}

ResourceMeter::~ResourceMeter()
{
    if (m_status >= 0)
        ::close(m_status);
}

Resources ResourceMeter::used() const
{
    Resources resources;
    resources.processorSeconds = processorSecondsOf(RUSAGE_SELF) + processorSecondsOf(RUSAGE_CHILDREN);
    // The peak that getrusage() tells is no less than that of the program that started this one.
    std::array<char, 4096> buffer {};
    const ssize_t length = m_status < 0 ? 0 : ::pread(m_status, buffer.data(), buffer.size(), 0);
    const std::string text(buffer.data(), static_cast<std::size_t>(std::max<ssize_t>(length, 0)));
    const std::string name = "\nVmHWM:";
    const std::size_t at = text.find(name);
    if (at != std::string::npos)
        resources.peakBytes = std::strtoull(text.c_str() + at + name.size(), nullptr, 10) * 1024;
    return resources;
}

ConversionRecord::ConversionRecord(std::string input, std::string output)
    : m_input(std::move(input))
    , m_output(std::move(output))
    , m_startTime(std::time(nullptr))
    , m_start(std::chrono::steady_clock::now())
{
}

void ConversionRecord::addLanguage(const std::string& language)
{
    const auto known = std::find_if(
        m_languages.begin(), m_languages.end(), [&](const LanguageCount& count) { return count.language == language; });
    if (known == m_languages.end())
        m_languages.push_back({ language, 1 });
    else
        ++known->parts;
}

void ConversionRecord::addPage(int width, int height, Resolution resolution)
{
    if (!m_pages.empty()) {
        PageRun& last = m_pages.back();
        if (last.width == width && last.height == height && last.resolution.x == resolution.x
            && last.resolution.y == resolution.y) {
            ++last.pages;
            return;
        }
    }
    m_pages.push_back({ width, height, resolution, 1 });
}

double ConversionRecord::secondsSoFar() const
{
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_start).count();
}

std::string ConversionRecord::line(
    int exitCode, const std::string& message, double seconds, const std::optional<Resources>& resources) const
{
    Json record;
    record["started"] = isoTime(m_startTime);
    record["version"] = kVersion;
    record["input"] = m_input;
    if (!isUtf8(m_input))
        record["inputHex"] = hexOf(m_input);
    record["output"] = m_output;
    if (!isUtf8(m_output))
        record["outputHex"] = hexOf(m_output);
    record["bytes"] = m_inputBytes ? Json(*m_inputBytes) : Json();
    record["exitCode"] = exitCode;
    record["message"] = message;
    record["languages"] = Json::array();
    for (const LanguageCount& count : m_languages)
        record["languages"].push_back({ { "language", count.language }, { "parts", count.parts } });
    // What was drawn for a run that failed is gone.
    const bool isOutputThere = exitCode == kExitDone || exitCode == kExitDamaged;
    std::uint64_t pages = 0;
    Json sizes = Json::array();
    for (const PageRun& run : m_pages) {
        if (!isOutputThere)
            break;
        sizes.push_back({ { "first", pages + 1 }, { "pages", run.pages }, { "width", run.width },
            { "height", run.height }, { "dpiAcross", std::round(run.resolution.x * 100) / 100 },
            { "dpiDown", std::round(run.resolution.y * 100) / 100 } });
        pages += run.pages;
    }
    record["pages"] = pages;
    record["sizes"] = std::move(sizes);
    record["warnings"] = Json::array();
    for (const Diagnostic& warning : m_warnings)
        record["warnings"].push_back(
            { { "kind", warning.kind }, { "offset", warning.offset }, { "message", warning.message } });
    record["seconds"] = inMilliseconds(seconds);
    if (resources) {
        record["processorSeconds"] = inMilliseconds(resources->processorSeconds);
        record["peakMemoryBytes"] = resources->peakBytes;
    }
    return record.dump(-1, ' ', false, Json::error_handler_t::replace);
}

} // namespace quillrip::cli
