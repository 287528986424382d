#include "quillrip/image/output_folder.h"

#include <array>
#include <cerrno>
#include <climits>
#include <cstdio>
#include <ctime>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/random.h>
#include <unistd.h>

namespace quillrip {

namespace {

/// Runs that write the same output at the same time and whose leftovers are found; those beyond leave theirs.
constexpr int kOwners = 8;
/// A new and a former file for each of the most pages that a job may have.
constexpr std::uint32_t kMostNumbers = 200001;
/// Lock files of systems without locks are believed abandoned after this long.
constexpr std::time_t kAbandonedAfterSeconds = std::time_t { 24 } * 60 * 60;
constexpr int kMostLinks = 40;

/// FNV-1a, 64 bits: names of files are the same in every run, and cannot be made longer than names may be.
std::uint64_t hashOf(const std::string& text)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (const char c : text)
        hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3;
    return hash;
}

std::string hexadecimal(std::uint64_t number)
{
    std::array<char, 17> digits {};
    std::snprintf(digits.data(), digits.size(), "%016llx", static_cast<unsigned long long>(number));
    return digits.data();
}

std::uint64_t randomNumber()
{
    std::uint64_t random = 0;
    if (getrandom(&random, sizeof random, GRND_NONBLOCK) != sizeof random) {
        struct timespec now { };
        clock_gettime(CLOCK_MONOTONIC, &now);
        random = static_cast<std::uint64_t>(now.tv_nsec) << 32 | static_cast<std::uint64_t>(getpid());
    }
    return random;
}

/// Where a symbolic link leads; empty, with a sentence in `reason`, when it is not to be followed.
std::string linkTarget(const OutputFolder& folder, const std::string& name, std::string& reason)
{
    // One descriptor for the owner and the content: both are of the same link.
    const int link = openat(folder.descriptor(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC); // NOLINT
    struct stat status { };
    struct stat parent { };
    std::array<char, PATH_MAX> target {};
    ssize_t length = -1;
    if (link >= 0 && fstat(link, &status) == 0 && fstat(folder.descriptor(), &parent) == 0) {
        if (status.st_uid != geteuid() && status.st_uid != parent.st_uid) {
            close(link);
            reason = "cannot be written: it is a symbolic link that another user has put there";
            return {};
        }
        length = readlinkat(link, "", target.data(), target.size());
    }
    if (length <= 0 || length == static_cast<ssize_t>(target.size())) {
        reason = writeReason(length < 0 ? errno : ENAMETOOLONG);
        length = 0;
    }
    if (link >= 0)
        close(link);
    return { target.data(), static_cast<std::size_t>(length) };
}

} // namespace

std::string writeReason(int error) { return "cannot be written: " + std::generic_category().message(error); }

std::shared_ptr<OutputFolder> OutputFolder::open(int at, const std::string& path, const std::string& outputName)
{
    const char* const name = path.empty() ? "." : path.c_str();
    int descriptor = openat(at, name, O_RDONLY | O_DIRECTORY | O_CLOEXEC); // NOLINT
    const bool canSync = descriptor >= 0;
    // Files can be made in a folder that cannot be listed.
    if (descriptor < 0 && errno == EACCES)
        descriptor = openat(at, name, O_PATH | O_DIRECTORY | O_CLOEXEC); // NOLINT
    if (descriptor < 0)
        return nullptr;
    std::shared_ptr<OutputFolder> folder { new OutputFolder(descriptor, canSync, outputName) };
    folder->sweep();
    return folder;
}

OutputFolder::OutputFolder(int descriptor, bool canSync, const std::string& outputName)
    : m_descriptor(descriptor)
    , m_canSync(canSync)
    , m_prefix(".quillrip-" + hexadecimal(hashOf(outputName)))
{
}

OutputFolder::~OutputFolder()
{
    if (m_lock >= 0) {
        // The lock goes last: without it nobody would look for the rest.
        if (m_isAllRemoved)
            unlinkat(m_descriptor, m_lockName.c_str(), 0);
        close(m_lock);
    }
    close(m_descriptor);
}

std::string OutputFolder::nameOf(const std::string& owner, std::uint32_t number) const
{
    return m_prefix + "." + owner + "-" + std::to_string(number) + ".tmp";
}

std::string OutputFolder::hiddenName()
{
    if ((m_lock < 0 && !lock()) || !reserve(m_lastNumber + 1))
        return {};
    return nameOf(m_owner, ++m_lastNumber);
}

void OutputFolder::removeHidden(const std::string& name)
{
    if (unlinkat(m_descriptor, name.c_str(), 0) != 0 && errno != ENOENT)
        m_isAllRemoved = false;
}

void OutputFolder::keepHidden()
{
    // The lock file stays as well, so that nobody else takes these names; that it is read-only says why.
    fchmod(m_lock, S_IRUSR);
    m_isAllRemoved = false;
}

bool OutputFolder::lock()
{
    for (int owner = 0; owner < kOwners; ++owner)
        if (lockAs(std::to_string(owner)))
            return true;
        else if (errno != EEXIST)
            return false;
    return lockAs(hexadecimal(randomNumber()));
}

bool OutputFolder::lockAs(const std::string& owner)
{
    std::string name = nameOf(owner, 0);
    m_owner = owner;
    const int lock = openat(m_descriptor, name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0600); // NOLINT
    if (lock < 0)
        return false;
    // Between the two another run can have taken the file for a leftover and removed it. Where the system has no locks,
    // the file's age has to do.
    const bool isLocked = flock(lock, LOCK_EX | LOCK_NB) == 0;
    struct stat status { };
    if ((!isLocked && errno == EWOULDBLOCK) || fstat(lock, &status) != 0 || status.st_nlink == 0) {
        close(lock);
        errno = EEXIST;
        return false;
    }
    m_lockName = std::move(name);
    m_lock = lock;
    return true;
}

/// The lock file's size tells which numbers this run has used.
bool OutputFolder::reserve(std::uint32_t number)
{
    if (number <= m_reserved)
        return true;
    const std::uint32_t reserved = m_reserved < 16 ? 16 : m_reserved * 2;
    int result = 0;
    do {
        result = ftruncate(m_lock, reserved);
    } while (result != 0 && errno == EINTR);
    if (result != 0)
        return false;
    m_reserved = reserved;
    return true;
}

void OutputFolder::sweep()
{
    for (int owner = 0; owner < kOwners; ++owner)
        sweep(std::to_string(owner));
}

void OutputFolder::sweep(const std::string& owner)
{
    const std::string name = nameOf(owner, 0);
    const int lock = openat(m_descriptor, name.c_str(), O_RDWR | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC); // NOLINT
    if (lock < 0)
        return;
    struct stat status { };
    bool isLeftover = fstat(lock, &status) == 0 && S_ISREG(status.st_mode) && (status.st_mode & S_IWUSR) != 0
        && status.st_uid == geteuid();
    if (isLeftover && flock(lock, LOCK_EX | LOCK_NB) != 0)
        isLeftover = errno != EWOULDBLOCK && std::time(nullptr) - status.st_mtime > kAbandonedAfterSeconds;
    // Locked, but not the one that has the name now: its run has ended meanwhile, and another may have begun.
    struct stat named { };
    isLeftover = isLeftover && find(name, named) && named.st_ino == status.st_ino && named.st_dev == status.st_dev;
    if (isLeftover) {
        const auto used
            = status.st_size < off_t { kMostNumbers } ? static_cast<std::uint32_t>(status.st_size) : kMostNumbers;
        bool isAllRemoved = true;
        for (std::uint32_t number = 1; number <= used; ++number)
            isAllRemoved
                = (unlinkat(m_descriptor, nameOf(owner, number).c_str(), 0) == 0 || errno == ENOENT) && isAllRemoved;
        if (isAllRemoved)
            unlinkat(m_descriptor, name.c_str(), 0);
    }
    close(lock);
}

bool OutputFolder::find(const std::string& name, struct stat& status) const
{
    return fstatat(m_descriptor, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0;
}

bool OutputFolder::sync() const
{
    if (!m_canSync || fsync(m_descriptor) == 0)
        return true;
    // Some file systems do not know how to flush a folder: they write its entries at once or not at all.
    return errno == EINVAL || errno == ENOSYS || errno == EOPNOTSUPP;
}

bool findPlace(const std::string& path, std::shared_ptr<OutputFolder>& known, std::string& knownPath,
    OutputPlace& place, std::string& reason)
{
    const auto split = [&](const std::string& whole, std::string& folder) {
        const std::size_t slash = whole.find_last_of('/') + 1;
        folder = whole.substr(0, slash);
        place.name = whole.substr(slash);
        if (place.name.empty() || place.name == "." || place.name == "..")
            reason = "cannot be written: it is not the name of a file";
        return reason.empty();
    };
    reason.clear();
    std::string folderPath;
    if (!split(path, folderPath))
        return false;
    if (!known || knownPath != folderPath) {
        known = OutputFolder::open(AT_FDCWD, folderPath, place.name);
        knownPath = folderPath;
    }
    place.folder = known;
    for (int links = 0; place.folder; ++links) {
        struct stat status { };
        if (!place.folder->find(place.name, status)) {
            if (errno != ENOENT)
                reason = writeReason(errno);
            return reason.empty();
        }
        if (!S_ISLNK(status.st_mode))
            return true;
        if (links == kMostLinks) {
            reason = writeReason(ELOOP);
            return false;
        }
        const std::string target = linkTarget(*place.folder, place.name, reason);
        if (target.empty() || !split(target, folderPath))
            return false;
        if (!folderPath.empty())
            place.folder = OutputFolder::open(place.folder->descriptor(), folderPath, place.name);
    }
    reason = writeReason(errno);
    return false;
}

} // namespace quillrip
