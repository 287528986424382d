#include "quillrip/job/sandbox.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdint>

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/landlock.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace quillrip {

namespace {

// What came after the first version of Landlock, by the version of its interface: headers may be older than the kernel.
constexpr std::uint64_t kRefer = std::uint64_t { 1 } << 13; // 2
constexpr std::uint64_t kTruncate = std::uint64_t { 1 } << 14; // 3
constexpr std::uint64_t kDeviceControl = std::uint64_t { 1 } << 15; // 5
constexpr std::uint64_t kFirstRights = kRefer - 1;
constexpr std::uint64_t kTcpRights = 3; // 4: bind, connect
constexpr std::uint64_t kScopes = 3; // 6: abstract sockets, signals

constexpr std::uint64_t kReadFile = LANDLOCK_ACCESS_FS_READ_FILE;
constexpr std::uint64_t kRead = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_READ_DIR;
constexpr std::uint64_t kWrite = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE
    | LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_REMOVE_FILE | kTruncate;
/// Those that a file can have; the kernel refuses the others for it.
constexpr std::uint64_t kRightsOfFiles
    = LANDLOCK_ACCESS_FS_READ_FILE | LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_EXECUTE | kTruncate;

struct RulesetAttributes {
    std::uint64_t files;
    std::uint64_t network;
    std::uint64_t scopes;
};

long landlockVersion()
{
    return syscall(SYS_landlock_create_ruleset, nullptr, std::size_t { 0 }, LANDLOCK_CREATE_RULESET_VERSION);
}

class Ruleset {
public:
    explicit Ruleset(long version)
        : m_rights(kFirstRights | (version >= 2 ? kRefer : 0) | (version >= 3 ? kTruncate : 0)
            | (version >= 5 ? kDeviceControl : 0))
    {
        const RulesetAttributes attributes { m_rights, kTcpRights, kScopes };
        const std::size_t size = version >= 6 ? sizeof attributes
            : version >= 4                    ? offsetof(RulesetAttributes, scopes)
                                              : offsetof(RulesetAttributes, network);
        m_descriptor = static_cast<int>(syscall(SYS_landlock_create_ruleset, &attributes, size, 0));
    }
    ~Ruleset()
    {
        if (m_descriptor >= 0)
            close(m_descriptor);
    }
    Ruleset(const Ruleset&) = delete;
    Ruleset& operator=(const Ruleset&) = delete;

    bool isValid() const { return m_descriptor >= 0; }

    void allow(int descriptor, std::uint64_t rights)
    {
        struct stat status { };
        if (fstat(descriptor, &status) != 0)
            return;
        rights &= S_ISDIR(status.st_mode) ? m_rights : m_rights & kRightsOfFiles;
        struct landlock_path_beneath_attr beneath { };
        beneath.allowed_access = rights;
        beneath.parent_fd = descriptor;
        syscall(SYS_landlock_add_rule, m_descriptor, LANDLOCK_RULE_PATH_BENEATH, &beneath, 0);
    }

    void allow(const std::string& path, std::uint64_t rights)
    {
        const int descriptor = open(path.c_str(), O_PATH | O_CLOEXEC); // NOLINT
        if (descriptor < 0)
            return;
        allow(descriptor, rights);
        close(descriptor);
    }

    bool restrictThisThread() const { return syscall(SYS_landlock_restrict_self, m_descriptor, 0) == 0; }

private:
    std::uint64_t m_rights;
    int m_descriptor = -1;
};

#if defined(__x86_64__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_X86_64;
/// Numbers from here on are those of the x32 interface, another way to the same calls.
constexpr std::uint32_t kFirstForeignCall = 0x40000000;
#elif defined(__aarch64__)
constexpr std::uint32_t kArchitecture = AUDIT_ARCH_AARCH64;
constexpr std::uint32_t kFirstForeignCall = 0xFFFFFFFF;
#else
constexpr std::uint32_t kArchitecture = 0; // not known here: no filter
constexpr std::uint32_t kFirstForeignCall = 0;
#endif

// A list of what is refused, not of what is allowed: the C library finds new calls for old purposes with every version,
// and what is left does no harm to files that Landlock keeps out of reach.
constexpr std::array s_refusedCalls { SYS_socket, SYS_socketpair, SYS_connect, SYS_bind, SYS_listen, SYS_accept,
    SYS_accept4, SYS_ptrace, SYS_process_vm_readv, SYS_process_vm_writev, SYS_mount, SYS_umount2, SYS_pivot_root,
    SYS_chroot, SYS_unshare, SYS_setns, SYS_open_by_handle_at, SYS_name_to_handle_at, SYS_add_key, SYS_request_key,
    SYS_keyctl, SYS_bpf, SYS_perf_event_open, SYS_userfaultfd, SYS_io_uring_setup, SYS_io_uring_enter,
    SYS_io_uring_register, SYS_init_module, SYS_finit_module, SYS_delete_module, SYS_kexec_load, SYS_reboot, SYS_swapon,
    SYS_swapoff, SYS_acct, SYS_quotactl, SYS_settimeofday, SYS_clock_settime, SYS_adjtimex, SYS_clock_adjtime,
    SYS_sethostname, SYS_setdomainname, SYS_personality, SYS_pidfd_getfd, SYS_fanotify_init, SYS_move_mount,
    SYS_open_tree, SYS_fsopen, SYS_fsmount };
constexpr std::array s_programCalls { SYS_execve, SYS_execveat };

constexpr std::uint32_t kAllow = SECCOMP_RET_ALLOW;
constexpr std::uint32_t kRefuse = SECCOMP_RET_ERRNO | EPERM;

struct sock_filter load(std::size_t offset) { return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<__u32>(offset)); }
struct sock_filter end(std::uint32_t result) { return BPF_STMT(BPF_RET | BPF_K, result); }
struct sock_filter skipUnlessEqual(std::uint32_t value) { return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, 1); }

} // namespace

std::vector<std::string> systemPaths()
{
    return { "/usr", "/lib", "/lib64", "/etc/ld.so.cache", "/etc/localtime", "/etc/fonts", "/etc/alternatives" };
}

bool confineFiles(const SandboxRules& rules)
{
    const long version = landlockVersion();
    if (version < 1)
        return false;
    Ruleset ruleset { version };
    if (!ruleset.isValid())
        return false;
    for (const std::string& path : rules.readable)
        ruleset.allow(path, kRead);
    for (const std::string& path : rules.executable)
        ruleset.allow(path, kRead | LANDLOCK_ACCESS_FS_EXECUTE);
    for (const int descriptor : rules.readableFiles)
        ruleset.allow(descriptor, kReadFile);
    for (const int descriptor : rules.writableFolders)
        ruleset.allow(descriptor, kWrite);
    for (const std::string& path : rules.writablePaths)
        ruleset.allow(path, kWrite | LANDLOCK_ACCESS_FS_MAKE_SYM);
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && ruleset.restrictThisThread();
}

bool confineCalls(bool runsPrograms)
{
    if (kArchitecture == 0)
        return false;
    std::array<struct sock_filter, 2 * (s_refusedCalls.size() + s_programCalls.size()) + 8> filter {};
    std::size_t length = 0;
    filter[length++] = load(offsetof(struct seccomp_data, arch));
    filter[length++] = BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kArchitecture, 1, 0);
    filter[length++] = end(kRefuse);
    filter[length++] = load(offsetof(struct seccomp_data, nr));
    filter[length++] = BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, kFirstForeignCall, 0, 1);
    filter[length++] = end(kRefuse);
    const auto refuse = [&](long call) {
        filter[length++] = skipUnlessEqual(static_cast<std::uint32_t>(call));
        filter[length++] = end(kRefuse);
    };
    for (const long call : s_refusedCalls)
        refuse(call);
    for (const long call : s_programCalls)
        if (!runsPrograms)
            refuse(call);
    filter[length++] = end(kAllow);
    const struct sock_fprog program {
        static_cast<unsigned short>(length), filter.data()
    };
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0
        && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) == 0; // NOLINT
}

std::string sandboxSupport()
{
    const long version = landlockVersion();
    const bool hasFilters = kArchitecture != 0 && prctl(PR_GET_SECCOMP, 0, 0, 0, 0) >= 0;
    std::string support = version >= 1 ? "Landlock " + std::to_string(version) : "";
    if (hasFilters)
        support += support.empty() ? "seccomp" : ", seccomp";
    return support.empty() ? "none" : support;
}

} // namespace quillrip
