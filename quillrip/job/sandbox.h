#pragma once

#include <string>
#include <vector>

namespace quillrip {

/// What a confined process may still do with files. Paths that are not there are passed over.
struct SandboxRules {
    std::vector<std::string> readable; ///< files, or folders with all that is below them
    std::vector<std::string> executable; ///< to read and to run, likewise
    std::vector<int> readableFiles; ///< descriptors of files that are opened again through /proc/self/fd
    std::vector<int> writableFolders; ///< descriptors: files in them can be read, made, renamed and removed
    std::vector<std::string> writablePaths; ///< folders, likewise, and for symbolic links
};

/// Libraries, and what programs of the system read besides: "/usr", "/lib" and such.
std::vector<std::string> systemPaths();

/// From here on this thread, and what threads and programs it starts, can reach no other file than `rules` says, and no
/// network (Landlock, landlock(7)). It allocates nothing, so that it can be called between fork and exec. False where
/// the kernel does not know how; then nothing is changed.
bool confineFiles(const SandboxRules& rules);

/// From here on the same threads get no system call that drawing a page has no need of: sockets, tracing, mounting,
/// namespaces, keys and modules; nor, without `runsPrograms`, the start of another program (seccomp(2)). False
/// likewise.
bool confineCalls(bool runsPrograms);

/// What the kernel offers of both, for people: "Landlock 7, seccomp", or "none".
std::string sandboxSupport();

} // namespace quillrip
