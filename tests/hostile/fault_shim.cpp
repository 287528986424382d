// A library to be loaded before all others (LD_PRELOAD): it lets the n-th call of one kind fail, or ends the process
// before or after it, and can take away what not every file system has.
//
//   QUILLRIP_FAULT=KIND:N:ACTION   KIND is a call's name as below; ACTION is fail, kill-before or kill-after
//   QUILLRIP_FAULT_MARK=FILE       is made when the call has come
//   QUILLRIP_WITHOUT=WORD,...      unnamed files, noreplace (of renames), links, locks

#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

enum class Action { None, Fail, KillBefore, KillAfter };

struct Fault {
    const char* kind = nullptr;
    std::size_t kindLength = 0;
    long number = 0;
    Action action = Action::None;
};

/// Read anew from the environment until it is there: the first calls come before main().
const Fault& fault()
{
    static Fault s_fault;
    static bool s_isRead = false;
    if (s_isRead)
        return s_fault;
    const char* text = environ != nullptr ? std::getenv("QUILLRIP_FAULT") : nullptr;
    const char* colon = text != nullptr ? std::strchr(text, ':') : nullptr;
    if (colon != nullptr) {
        s_fault.kind = text;
        s_fault.kindLength = static_cast<std::size_t>(colon - text);
        char* end = nullptr;
        s_fault.number = std::strtol(colon + 1, &end, 10);
        s_fault.action = std::strcmp(end, ":kill-before") == 0 ? Action::KillBefore
            : std::strcmp(end, ":kill-after") == 0             ? Action::KillAfter
                                                               : Action::Fail;
    }
    s_isRead = environ != nullptr;
    return s_fault;
}

bool isWithout(const char* word)
{
    const char* words = environ != nullptr ? std::getenv("QUILLRIP_WITHOUT") : nullptr;
    return words != nullptr && std::strstr(words, word) != nullptr;
}

void mark()
{
    if (const char* path = std::getenv("QUILLRIP_FAULT_MARK"))
        syscall(SYS_close, syscall(SYS_openat, AT_FDCWD, path, O_CREAT | O_WRONLY, 0600));
}

[[noreturn]] void killThisProcess()
{
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    for (;;)
        pause();
}

/// What the call that comes now has to suffer.
Action actionFor(const char* kind)
{
    static long s_count = 0;
    const Fault& wanted = fault();
    if (wanted.kind == nullptr || std::strlen(kind) != wanted.kindLength
        || std::memcmp(kind, wanted.kind, wanted.kindLength) != 0
        || __atomic_add_fetch(&s_count, 1, __ATOMIC_SEQ_CST) != wanted.number)
        return Action::None;
    mark();
    if (wanted.action == Action::KillBefore)
        killThisProcess();
    return wanted.action;
}

template <typename Call> auto suffer(const char* kind, int error, const Call& call) -> decltype(call())
{
    const Action action = actionFor(kind);
    if (action == Action::Fail) {
        errno = error;
        return -1;
    }
    const auto result = call();
    if (action == Action::KillAfter)
        killThisProcess();
    return result;
}

/// Whether the libraries' own initialisers have run. GLib's, which HarfBuzz brings along, end the process or wait for
/// ever when memory is missing, before a line of the program is reached.
bool s_hasBegun = false;

bool hasMemory()
{
    if (!s_hasBegun || actionFor("alloc") == Action::None)
        return true;
    errno = ENOMEM;
    return false;
}

int openOf(int folder, const char* path, int flags, mode_t mode)
{
    if ((flags & O_TMPFILE) == O_TMPFILE && isWithout("unnamed")) {
        errno = EOPNOTSUPP;
        return -1;
    }
    return suffer("open", EMFILE, [&] { return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode)); });
}

} // namespace

extern "C" {

int open(const char* path, int flags, ...) // NOLINT(cert-dcl50-cpp)
{
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return openOf(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char* path, int flags, ...) // NOLINT(cert-dcl50-cpp)
{
    std::va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & (O_CREAT | O_TMPFILE)) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return openOf(folder, path, flags, mode);
}

ssize_t pwrite(int descriptor, const void* bytes, size_t count, off_t offset)
{
    return suffer(
        "write", ENOSPC, [&] { return static_cast<ssize_t>(syscall(SYS_pwrite64, descriptor, bytes, count, offset)); });
}

ssize_t pread(int descriptor, void* bytes, size_t count, off_t offset)
{
    return suffer(
        "read", EIO, [&] { return static_cast<ssize_t>(syscall(SYS_pread64, descriptor, bytes, count, offset)); });
}

int close(int descriptor)
{
    // Whether it says so or not, the descriptor is closed.
    const Action action = actionFor("close");
    const int result = static_cast<int>(syscall(SYS_close, descriptor));
    if (action == Action::KillAfter)
        killThisProcess();
    if (action != Action::Fail)
        return result;
    errno = EIO;
    return -1;
}

int linkat(int fromFolder, const char* from, int toFolder, const char* to, int flags)
{
    if (isWithout("links") && flags == 0) {
        errno = EPERM;
        return -1;
    }
    return suffer(
        "link", ENOSPC, [&] { return static_cast<int>(syscall(SYS_linkat, fromFolder, from, toFolder, to, flags)); });
}

int renameat2(int fromFolder, const char* from, int toFolder, const char* to, unsigned flags) noexcept
{
    if (flags != 0 && isWithout("noreplace")) {
        errno = EINVAL;
        return -1;
    }
    return suffer(
        "rename", EIO, [&] { return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags)); });
}

int renameat(int fromFolder, const char* from, int toFolder, const char* to) noexcept
{
    return suffer(
        "rename", EIO, [&] { return static_cast<int>(syscall(SYS_renameat2, fromFolder, from, toFolder, to, 0)); });
}

int unlinkat(int folder, const char* name, int flags) noexcept
{
    return suffer("unlink", EIO, [&] { return static_cast<int>(syscall(SYS_unlinkat, folder, name, flags)); });
}

int fsync(int descriptor)
{
    return suffer("fsync", EIO, [&] { return static_cast<int>(syscall(SYS_fsync, descriptor)); });
}

int ftruncate(int descriptor, off_t size) noexcept
{
    return suffer("truncate", ENOSPC, [&] { return static_cast<int>(syscall(SYS_ftruncate, descriptor, size)); });
}

int fchmod(int descriptor, mode_t mode) noexcept
{
    return suffer("chmod", EPERM, [&] { return static_cast<int>(syscall(SYS_fchmod, descriptor, mode)); });
}

int flock(int descriptor, int operation) noexcept
{
    if (isWithout("locks")) {
        errno = ENOLCK;
        return -1;
    }
    return suffer("lock", ENOLCK, [&] { return static_cast<int>(syscall(SYS_flock, descriptor, operation)); });
}

/// The dynamic linker has initialised all libraries when it is called; the program's own initialisers come next.
int __libc_start_main(int (*main)(int, char**, char**), int count, char** words, void (*init)(),
    void (*fini)(), // NOLINT
    void (*linkerFini)(), void* stackEnd)
{
    using Start = int (*)(int (*)(int, char**, char**), int, char**, void (*)(), void (*)(), void (*)(), void*);
    const auto start = reinterpret_cast<Start>(dlsym(RTLD_NEXT, "__libc_start_main"));
    s_hasBegun = true;
    return start(main, count, words, init, fini, linkerFini, stackEnd);
}

void* __libc_malloc(size_t count); // NOLINT
void* __libc_calloc(size_t count, size_t size); // NOLINT
void* __libc_realloc(void* old, size_t count); // NOLINT

void* malloc(size_t count) noexcept { return hasMemory() ? __libc_malloc(count) : nullptr; }
void* calloc(size_t count, size_t size) noexcept { return hasMemory() ? __libc_calloc(count, size) : nullptr; }
void* realloc(void* old, size_t count) noexcept { return hasMemory() ? __libc_realloc(old, count) : nullptr; }
}
