#include "quillrip/cli/report_file.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillrip::cli {

std::unique_ptr<ReportFile> ReportFile::open(const std::string& path, const std::string& inputPath, std::string& reason)
{
    constexpr mode_t allMayReadAndWrite = 0666; // less the user's mask
    const int descriptor = ::open(path.c_str(), O_RDWR | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY, allMayReadAndWrite);
    if (descriptor < 0) {
        reason = std::string("cannot be written: ") + std::strerror(errno);
        return nullptr;
    }
    std::unique_ptr<ReportFile> file(new ReportFile(descriptor));
    struct stat own { };
    struct stat input { };
    const int known = inputPath == "-" ? ::fstat(STDIN_FILENO, &input) : ::stat(inputPath.c_str(), &input);
    if (known == 0 && ::fstat(descriptor, &own) == 0 && S_ISREG(own.st_mode) && own.st_dev == input.st_dev
        && own.st_ino == input.st_ino) {
        reason = "is the input, and cannot be the report";
        return nullptr;
    }
    return file;
}

ReportFile::~ReportFile() { ::close(m_descriptor); }

bool ReportFile::append(const std::string& line, bool isDurable, std::string& reason) const
{
    const std::string bytes = (endsWithinLine() ? "\n" : "") + line + "\n";
    ssize_t written = -1;
    do
        written = ::write(m_descriptor, bytes.data(), bytes.size());
    while (written < 0 && errno == EINTR);
    if (written < 0) {
        reason = std::string("cannot be written: ") + std::strerror(errno);
        return false;
    }
    if (static_cast<std::size_t>(written) != bytes.size()) {
        reason = "cannot be written: there is no room for the line";
        return false;
    }
    // What is no file on a disk has nothing to flush.
    if (isDurable && ::fdatasync(m_descriptor) != 0 && errno != EINVAL && errno != EROFS) {
        reason = std::string("cannot be written: ") + std::strerror(errno);
        return false;
    }
    return true;
}

/// A full disk can have cut off the last line: it is not to swallow the next one too.
bool ReportFile::endsWithinLine() const
{
    struct stat status { };
    char last = '\n';
    return ::fstat(m_descriptor, &status) == 0 && S_ISREG(status.st_mode) && status.st_size > 0
        && ::pread(m_descriptor, &last, 1, status.st_size - 1) == 1 && last != '\n';
}

} // namespace quillrip::cli
