#include "quillrip/image/output_file.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillrip {

namespace {

constexpr std::size_t kGatherBytes = std::size_t { 256 } << 10;
constexpr int kNameAttempts = 100;

std::string messageOf(int error) { return std::generic_category().message(error); }

/// The path behind symbolic links, or the path itself when it is no link or leads nowhere yet.
std::string followLinks(const std::string& path)
{
    struct stat status { };
    if (lstat(path.c_str(), &status) != 0 || !S_ISLNK(status.st_mode))
        return path;
    const std::unique_ptr<char, decltype(&std::free)> resolved { realpath(path.c_str(), nullptr), &std::free };
    return resolved ? std::string { resolved.get() } : path;
}

std::string descriptorPath(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

} // namespace

std::unique_ptr<OutputFile> OutputFile::create(const std::string& target, std::string& reason, Naming naming)
{
    const std::string path = followLinks(target);
    struct stat status { };
    if (path.empty() || path.back() == '/') {
        reason = "cannot be written: it is not the name of a file";
        return nullptr;
    }
    if (stat(path.c_str(), &status) == 0) {
        if (S_ISDIR(status.st_mode)) {
            reason = "cannot be written: it is a folder";
            return nullptr;
        }
        if (!S_ISREG(status.st_mode)) {
            reason = "cannot be written: it is not a regular file";
            return nullptr;
        }
        // Renaming over a write-protected file would succeed; whoever protected it meant something else.
        if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
            reason = "cannot be written: " + messageOf(errno);
            return nullptr;
        }
    } else if (errno != ENOENT) {
        reason = "cannot be written: " + messageOf(errno);
        return nullptr;
    }
    std::unique_ptr<OutputFile> file { new OutputFile(path, path.substr(0, path.find_last_of('/') + 1)) };
    if (!file->open(naming)) {
        reason = "cannot be written: " + messageOf(errno);
        return nullptr;
    }
    return file;
}

OutputFile::OutputFile(std::string target, std::string folder)
    : m_target(std::move(target))
    , m_folder(std::move(folder))
{
}

bool OutputFile::open(Naming naming)
{
    // The name that an unnamed file gets in the end is made through /proc; without it there is no way back.
    if (naming == Naming::Unnamed && access("/proc/self/fd", X_OK) == 0) {
        m_descriptor
            = ::open(m_folder.empty() ? "." : m_folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0666); // NOLINT
        if (m_descriptor >= 0)
            return true;
    }
    for (int attempt = 0; attempt < kNameAttempts; ++attempt) {
        m_hidden = hiddenName();
        m_descriptor = ::open(m_hidden.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666); // NOLINT
        if (m_descriptor >= 0)
            return true;
        if (errno != EEXIST)
            break;
    }
    m_hidden.clear();
    return false;
}

OutputFile::~OutputFile()
{
    if (m_isPublished)
        settle();
    else if (!m_hidden.empty())
        unlink(m_hidden.c_str());
    if (m_descriptor >= 0)
        close(m_descriptor);
}

bool OutputFile::fail(const char* what, int error)
{
    if (m_reason.empty())
        m_reason = what + messageOf(error);
    return false;
}

std::string OutputFile::hiddenName() const
{
    // Not made from the target's name, which may be as long as a name can be.
    std::uint64_t random = 0;
    if (getrandom(&random, sizeof random, GRND_NONBLOCK) != sizeof random) {
        struct timespec now { };
        clock_gettime(CLOCK_MONOTONIC, &now);
        random = static_cast<std::uint64_t>(now.tv_nsec) << 32 | static_cast<std::uint64_t>(getpid());
    }
    std::array<char, 32> digits {};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(random));
    return m_folder + ".quillrip-" + digits.data() + ".tmp";
}

bool OutputFile::append(ByteView bytes)
{
    if (!m_reason.empty())
        return false;
    if (m_gathered.size() + bytes.size > kGatherBytes && !flush())
        return false;
    if (bytes.size >= kGatherBytes)
        return writeAt(m_size, bytes);
    if (bytes.size > 0)
        m_gathered.insert(m_gathered.end(), bytes.begin(), bytes.end());
    m_size += bytes.size;
    return true;
}

bool OutputFile::flush()
{
    if (!m_reason.empty())
        return false;
    if (m_gathered.empty())
        return true;
    const std::vector<std::uint8_t> gathered = std::exchange(m_gathered, {});
    return writeAt(m_size - gathered.size(), gathered);
}

bool OutputFile::writeAt(std::uint64_t offset, ByteView bytes)
{
    if (!flush())
        return false;
    while (!bytes.empty()) {
        const ssize_t written = pwrite(m_descriptor, bytes.data, bytes.size, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return fail("cannot be written: ", written < 0 ? errno : ENOSPC);
        offset += static_cast<std::uint64_t>(written);
        bytes = bytes.sub(static_cast<std::size_t>(written));
    }
    m_size = offset > m_size ? offset : m_size;
    return true;
}

bool OutputFile::readAt(std::uint64_t offset, std::uint8_t* bytes, std::size_t count)
{
    if (!flush())
        return false;
    while (count > 0) {
        const ssize_t got = pread(m_descriptor, bytes, count, static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return fail("cannot be read back: ", got < 0 ? errno : EIO);
        bytes += got;
        offset += static_cast<std::uint64_t>(got);
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

bool OutputFile::linkTo(const std::string& name) const
{
    if (m_hidden.empty())
        return linkat(AT_FDCWD, descriptorPath(m_descriptor).c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) == 0;
    return renameat2(AT_FDCWD, m_hidden.c_str(), AT_FDCWD, name.c_str(), RENAME_NOREPLACE) == 0;
}

bool OutputFile::publish()
{
    if (!flush())
        return false;
    // Some network file systems tell only here that they had no room. An unnamed file has to stay open until it has
    // a name.
    if (!m_hidden.empty() && close(std::exchange(m_descriptor, -1)) != 0)
        return fail("cannot be written: ", errno);
    // No file of that name: one step, and a crash at any moment leaves nothing else.
    if (linkTo(m_target)) {
        m_hidden.clear();
        return published();
    }
    if (errno != EEXIST && (m_hidden.empty() || errno != EINVAL))
        return fail("cannot be written: ", errno);
    for (int attempt = 0; m_hidden.empty(); ++attempt) {
        const std::string name = hiddenName();
        if (linkTo(name))
            m_hidden = name;
        else if (errno != EEXIST || attempt == kNameAttempts)
            return fail("cannot be written: ", errno);
    }
    // The exchange keeps the former file under the hidden name, so that it can be put back. It would take a folder
    // for a former file.
    struct stat status { };
    if (stat(m_target.c_str(), &status) == 0 && S_ISDIR(status.st_mode))
        return fail("cannot be written: ", EISDIR);
    if (renameat2(AT_FDCWD, m_hidden.c_str(), AT_FDCWD, m_target.c_str(), RENAME_EXCHANGE) == 0)
        return published();
    if (errno != EINVAL && errno != ENOSYS && errno != ENOENT)
        return fail("cannot be written: ", errno);
    if (rename(m_hidden.c_str(), m_target.c_str()) != 0)
        return fail("cannot be written: ", errno);
    m_hidden.clear();
    return published();
}

bool OutputFile::published()
{
    if (m_descriptor >= 0)
        close(std::exchange(m_descriptor, -1));
    m_isPublished = true;
    return true;
}

void OutputFile::withdraw()
{
    if (!m_isPublished)
        return;
    if (m_hidden.empty())
        unlink(m_target.c_str());
    else
        rename(m_hidden.c_str(), m_target.c_str());
    m_hidden.clear();
    m_isPublished = false;
}

void OutputFile::settle()
{
    if (m_isPublished && !m_hidden.empty())
        unlink(m_hidden.c_str());
    m_hidden.clear();
}

} // namespace quillrip
