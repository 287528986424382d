#pragma once

#include <memory>
#include <string>

namespace quillrip::cli {

/// A file that many conversions, at the same time as well, append a line to. On one machine no line is mixed with
/// another; network file systems promise that only for the processes of one machine.
class ReportFile {
public:
    /// Makes the file when there is none. Null when it cannot be written, or is the file of `inputPath`; `reason` says
    /// why, as a sentence without full stop.
    static std::unique_ptr<ReportFile> open(const std::string& path, const std::string& inputPath, std::string& reason);
    ~ReportFile();
    ReportFile(const ReportFile&) = delete;
    ReportFile& operator=(const ReportFile&) = delete;

    /// `line` is without a line's end. With `isDurable` it is on the disk when this returns. False, with a reason, when
    /// it is not all there.
    [[nodiscard]] bool append(const std::string& line, bool isDurable, std::string& reason) const;

    int descriptor() const { return m_descriptor; }

private:
    explicit ReportFile(int descriptor)
        : m_descriptor(descriptor)
    {
    }
    bool endsWithinLine() const;

    int m_descriptor;
};

} // namespace quillrip::cli
