#include "quillrip/cli/conversion_record.h"

#include "quillrip/cli/version.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>
#include <utility>

#include <nlohmann/json.hpp>

namespace quillrip::cli {

namespace {

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

// Only strings are made by the library: its lists and objects ask for memory when they go, and end the process when
// there is none, which would be after the images have appeared.
std::string quoted(const std::string& text)
{
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

/// Elements with a comma behind each.
std::string listOf(const std::string& elements)
{
    std::string list("[");
    list.append(elements, 0, elements.empty() ? 0 : elements.size() - 1);
    list += ']';
    return list;
}

std::string decimal(double value, int places)
{
    std::array<char, 64> text {};
    std::snprintf(text.data(), text.size(), "%.*f", places, value);
    return text.data();
}

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
        static_cast<void>(nlohmann::json(text).dump());
        return true;
    } catch (const nlohmann::json::type_error&) {
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
    std::string text = std::string("{\"started\":") + quoted(isoTime(m_startTime)) + ",\"version\":" + quoted(kVersion);
    const auto add
        = [&text](const char* name, const std::string& value) { text += std::string(",\"") + name + "\":" + value; };
    add("input", quoted(m_input));
    if (!isUtf8(m_input))
        add("inputHex", quoted(hexOf(m_input)));
    add("output", quoted(m_output));
    if (!isUtf8(m_output))
        add("outputHex", quoted(hexOf(m_output)));
    add("bytes", m_inputBytes ? std::to_string(*m_inputBytes) : "null");
    add("exitCode", std::to_string(exitCode));
    add("message", quoted(message));

    std::string languages;
    for (const LanguageCount& count : m_languages)
        languages += std::string("{\"language\":") + quoted(count.language)
            + ",\"parts\":" + std::to_string(count.parts) + "},";
    add("languages", listOf(languages));

    // What was drawn for a run that failed is gone.
    const bool isOutputThere = exitCode == kExitDone || exitCode == kExitDamaged;
    std::uint64_t pages = 0;
    std::string sizes;
    for (const PageRun& run : m_pages) {
        if (!isOutputThere)
            break;
        sizes += std::string("{\"first\":") + std::to_string(pages + 1) + ",\"pages\":" + std::to_string(run.pages)
            + ",\"width\":" + std::to_string(run.width) + ",\"height\":" + std::to_string(run.height)
            + ",\"dpiAcross\":" + decimal(run.resolution.x, 2) + ",\"dpiDown\":" + decimal(run.resolution.y, 2) + "},";
        pages += run.pages;
    }
    add("pages", std::to_string(pages));
    add("sizes", listOf(sizes));

    std::string warnings;
    for (const Diagnostic& warning : m_warnings)
        warnings += std::string("{\"kind\":") + quoted(warning.kind) + ",\"offset\":" + std::to_string(warning.offset)
            + ",\"message\":" + quoted(warning.message) + "},";
    add("warnings", listOf(warnings));

    add("seconds", decimal(seconds, 3));
    if (resources) {
        add("processorSeconds", decimal(resources->processorSeconds, 3));
        add("peakMemoryBytes", std::to_string(resources->peakBytes));
    }
    return text + "}";
}

} // namespace quillrip::cli
