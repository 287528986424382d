#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/page_bitmap.h"

#include <chrono>
#include <cstdint>
#include <ctime>
#include <optional>
#include <string>
#include <vector>

namespace quillrip::cli {

/// What a process has used up.
struct Resources {
    double processorSeconds = 0; ///< programs that it has started and seen end included
    std::uint64_t peakBytes = 0; ///< of its memory; without those programs
};

/// Asks the system. Made before the process is confined, since it could not ask afterwards.
class ResourceMeter {
public:
    ResourceMeter();
    ~ResourceMeter();
    ResourceMeter(const ResourceMeter&) = delete;
    ResourceMeter& operator=(const ResourceMeter&) = delete;

    Resources used() const;

private:
    int m_status; ///< of /proc/self/status; negative: there is none
};

/// What an archive's keeper wants to know of a conversion, as one line of JSON. Pages are those in the output.
class ConversionRecord {
public:
    ConversionRecord(std::string input, std::string output);

    void setInputBytes(std::uint64_t bytes) { m_inputBytes = bytes; }
    /// For an input whose length was not known before.
    void setInputBytesRead(std::uint64_t bytes)
    {
        if (!m_inputBytes)
            m_inputBytes = bytes;
    }
    void addLanguage(const std::string& language);
    void addPage(int width, int height, Resolution resolution);
    void addWarning(const Diagnostic& warning) { m_warnings.push_back(warning); }

    /// `seconds` in real time. Without `resources` they are not told.
    std::string line(
        int exitCode, const std::string& message, double seconds, const std::optional<Resources>& resources) const;
    double secondsSoFar() const;

private:
    struct LanguageCount {
        std::string language;
        std::uint64_t parts = 0;
    };
    struct PageRun {
        int width = 0; ///< device pixels
        int height = 0;
        Resolution resolution;
        std::uint64_t pages = 0;
    };

    std::string m_input;
    std::string m_output;
    std::time_t m_startTime;
    std::chrono::steady_clock::time_point m_start;
    std::optional<std::uint64_t> m_inputBytes;
    std::vector<LanguageCount> m_languages;
    std::vector<PageRun> m_pages;
    std::vector<Diagnostic> m_warnings;
};

} // namespace quillrip::cli
