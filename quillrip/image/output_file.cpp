#include "quillrip/image/output_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace quillrip {

namespace {

constexpr std::size_t kGatherBytes = std::size_t { 256 } << 10;
/// What is not worth a copy.
constexpr std::size_t kDirectBytes = std::size_t { 64 } << 10;
constexpr std::size_t kCopyBytes = std::size_t { 64 } << 10;
constexpr mode_t kPermissions = 0777;

/// Only where it differs: some file systems have one mode for all files, and refuse to hear of it.
bool setMode(int descriptor, mode_t mode)
{
    struct stat status { };
    return fstat(descriptor, &status) == 0
        && ((status.st_mode & kPermissions) == (mode & kPermissions) || fchmod(descriptor, mode & kPermissions) == 0);
}

std::string descriptorPath(int descriptor) { return "/proc/self/fd/" + std::to_string(descriptor); }

bool writeWhole(int descriptor, ByteView bytes, std::uint64_t& offset)
{
    while (!bytes.empty()) {
        const ssize_t written = pwrite(descriptor, bytes.data, bytes.size, static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = ENOSPC;
        if (written <= 0)
            return false;
        offset += static_cast<std::uint64_t>(written);
        bytes = bytes.sub(static_cast<std::size_t>(written));
    }
    return true;
}

bool copyBytes(int from, int to)
{
    std::vector<std::uint8_t> bytes(kCopyBytes);
    for (std::uint64_t offset = 0;;) {
        const ssize_t got = pread(from, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (got < 0 && errno == EINTR)
            continue;
        if (got <= 0)
            return got == 0;
        if (!writeWhole(to, { bytes.data(), static_cast<std::size_t>(got) }, offset))
            return false;
    }
}

} // namespace

std::unique_ptr<OutputFile> OutputFile::create(const OutputPlace& place, std::string& reason, Naming naming)
{
    struct stat status { };
    const bool hasFormer = place.folder->find(place.name, status);
    if (hasFormer) {
        if (!S_ISREG(status.st_mode)) {
            reason = S_ISDIR(status.st_mode) ? "cannot be written: it is a folder"
                                             : "cannot be written: it is not a regular file";
            return nullptr;
        }
        // Renaming over a write-protected file would succeed; whoever protected it meant something else.
        if (faccessat(place.folder->descriptor(), place.name.c_str(), W_OK, AT_EACCESS) != 0) {
            reason = writeReason(errno);
            return nullptr;
        }
    } else if (errno != ENOENT) {
        reason = writeReason(errno);
        return nullptr;
    }
    std::unique_ptr<OutputFile> file { new OutputFile(place) };
    // What nobody else could read before is not to be read while it is written.
    if (!file->open(naming) || (hasFormer && !setMode(file->m_descriptor, status.st_mode))) {
        reason = writeReason(errno);
        return nullptr;
    }
    return file;
}

OutputFile::OutputFile(OutputPlace place)
    : m_place(std::move(place))
{
}

bool OutputFile::open(Naming naming)
{
    // The name that an unnamed file gets in the end is made through /proc; without it there is no way back.
    if (naming == Naming::Unnamed && access("/proc/self/fd", X_OK) == 0) {
        m_descriptor = openat(folder(), ".", O_TMPFILE | O_RDWR | O_CLOEXEC, 0666); // NOLINT
        if (m_descriptor >= 0)
            return true;
    }
    std::string name = m_place.folder->hiddenName();
    if (name.empty())
        return false;
    m_descriptor = openat(folder(), name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666); // NOLINT
    if (m_descriptor >= 0)
        m_hidden = std::move(name);
    return m_descriptor >= 0;
}

OutputFile::~OutputFile()
{
    if (m_descriptor >= 0)
        close(m_descriptor);
    if (!m_hidden.empty())
        m_place.folder->removeHidden(m_hidden);
    if (!m_saved.empty())
        m_place.folder->removeHidden(m_saved);
}

bool OutputFile::fail(int error)
{
    if (m_reason.empty())
        m_reason = writeReason(error);
    return false;
}

bool OutputFile::append(ByteView bytes)
{
    if (!m_reason.empty())
        return false;
    if (m_gathered.size() + bytes.size > kGatherBytes && !writeGathered())
        return false;
    if (bytes.size >= kDirectBytes)
        return writeAt(m_size, bytes);
    if (bytes.size > 0)
        m_gathered.insert(m_gathered.end(), bytes.begin(), bytes.end());
    m_size += bytes.size;
    return true;
}

bool OutputFile::flush()
{
    const bool isWritten = writeGathered();
    // Files wait for each other by the thousand.
    m_gathered = std::vector<std::uint8_t> {};
    return isWritten;
}

bool OutputFile::writeGathered()
{
    if (!m_reason.empty())
        return false;
    if (m_gathered.empty())
        return true;
    std::vector<std::uint8_t> gathered = std::exchange(m_gathered, {});
    const bool isWritten = writeAt(m_size - gathered.size(), gathered);
    // Its memory serves again.
    gathered.clear();
    m_gathered = std::move(gathered);
    return isWritten;
}

bool OutputFile::writeAt(std::uint64_t offset, ByteView bytes)
{
    if (!writeGathered())
        return false;
    if (!writeWhole(m_descriptor, bytes, offset))
        return fail(errno);
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
        if (got <= 0) {
            m_reason = "cannot be read back: " + std::generic_category().message(got < 0 ? errno : EIO);
            return false;
        }
        bytes += got;
        offset += static_cast<std::uint64_t>(got);
        count -= static_cast<std::size_t>(got);
    }
    return true;
}

bool OutputFile::park()
{
    if (!flush())
        return false;
    // Some network file systems tell only here that they had no room.
    if (!m_hidden.empty() && m_descriptor >= 0 && close(std::exchange(m_descriptor, -1)) != 0)
        return fail(errno);
    return true;
}

bool OutputFile::reopen()
{
    if (m_descriptor < 0)
        m_descriptor = openat(folder(), m_hidden.c_str(), O_RDWR | O_NOFOLLOW | O_CLOEXEC); // NOLINT
    return m_descriptor >= 0;
}

bool OutputFile::prepare(bool isDurable)
{
    if (!flush())
        return false;
    struct stat former { };
    const bool hasFormer = m_place.folder->find(m_place.name, former);
    if (!hasFormer && errno != ENOENT)
        return fail(errno);
    if (hasFormer && !S_ISREG(former.st_mode))
        return fail(S_ISDIR(former.st_mode) ? EISDIR : EEXIST);
    if (hasFormer && (!reopen() || !setMode(m_descriptor, former.st_mode)))
        return fail(errno);
    // A rename can take a former file's place, a link cannot.
    if (hasFormer && m_hidden.empty()) {
        std::string name = m_place.folder->hiddenName();
        if (name.empty() || !linkTo(name))
            return fail(errno);
        m_hidden = std::move(name);
    }
    if ((hasFormer || isDurable) && (!reopen() || fsync(m_descriptor) != 0))
        return fail(errno);
    return (!hasFormer || saveFormer()) && park();
}

bool OutputFile::saveFormer()
{
    std::string name = m_place.folder->hiddenName();
    if (name.empty())
        return fail(errno);
    // Some file systems have no second name for a file, and some files may not get one.
    if (linkat(folder(), m_place.name.c_str(), folder(), name.c_str(), 0) == 0)
        m_saved = std::move(name);
    else
        return copyFormer();
    return true;
}

bool OutputFile::copyFormer()
{
    std::string name = m_place.folder->hiddenName();
    const int from = openat(folder(), m_place.name.c_str(), O_RDONLY | O_NOFOLLOW | O_CLOEXEC); // NOLINT
    const int to = from < 0 || name.empty()
        ? -1
        : openat(folder(), name.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC, 0600); // NOLINT
    int error = errno;
    if (to >= 0) {
        m_saved = std::move(name);
        struct stat status { };
        bool isGood = fstat(from, &status) == 0 && copyBytes(from, to);
        if (isGood) {
            const std::array<struct timespec, 2> times { status.st_atim, status.st_mtim };
            static_cast<void>(futimens(to, times.data())); // a former file with another date is still the former file
            isGood = setMode(to, status.st_mode) && fsync(to) == 0;
        }
        error = isGood ? 0 : errno;
        if (close(to) != 0 && error == 0)
            error = errno;
    }
    if (from >= 0)
        close(from);
    return error == 0 || fail(error);
}

bool OutputFile::linkTo(const std::string& name) const
{
    return linkat(AT_FDCWD, descriptorPath(m_descriptor).c_str(), folder(), name.c_str(), AT_SYMLINK_FOLLOW) == 0;
}

bool OutputFile::appear()
{
    if (!m_reason.empty())
        return false;
    int result = 0;
    if (m_hidden.empty()) {
        result = linkTo(m_place.name) ? 0 : -1;
    } else {
        // Where nothing was to be replaced, nothing may be, whatever got the name since prepare().
        const unsigned flags = m_saved.empty() ? RENAME_NOREPLACE : 0;
        result = renameat2(folder(), m_hidden.c_str(), folder(), m_place.name.c_str(), flags);
        if (result != 0 && flags != 0 && (errno == EINVAL || errno == ENOSYS))
            result = renameat(folder(), m_hidden.c_str(), folder(), m_place.name.c_str());
    }
    if (result != 0)
        return fail(errno);
    m_hidden.clear();
    m_hasAppeared = true;
    return true;
}

bool OutputFile::withdraw()
{
    if (!std::exchange(m_hasAppeared, false))
        return true;
    if (m_saved.empty()) {
        unlinkat(folder(), m_place.name.c_str(), 0);
        return true;
    }
    const std::string saved = std::exchange(m_saved, {});
    if (renameat(folder(), saved.c_str(), folder(), m_place.name.c_str()) == 0)
        return true;
    m_place.folder->keepHidden();
    m_reason = "the former file cannot be put back, it is kept as " + saved;
    return false;
}

void OutputFile::settle()
{
    if (!m_saved.empty())
        m_place.folder->removeHidden(std::exchange(m_saved, {}));
}

} // namespace quillrip
