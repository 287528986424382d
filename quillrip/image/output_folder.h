#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <sys/stat.h>
#include <sys/types.h>

namespace quillrip {

/// A folder that output goes to, opened once: what happens to its path afterwards changes nothing. All names are of
/// entries in it.
///
/// It also gives out hidden names, for files that are not to be seen yet. They begin with a hash of the output's name
/// and belong to a lock file that stays open as long as the folder does, so that the next run with the same output
/// finds what a killed one left and removes it, and leaves alone what a running one needs.
class OutputFolder {
public:
    /// `path` counts from the folder `at`, or from the current one with AT_FDCWD; empty stands for that one itself.
    /// `outputName` is what is going to be written. Leftovers under that name are removed. Null, with errno, when there
    /// is no such folder or it may not be entered.
    static std::shared_ptr<OutputFolder> open(int at, const std::string& path, const std::string& outputName);
    ~OutputFolder();
    OutputFolder(const OutputFolder&) = delete;
    OutputFolder& operator=(const OutputFolder&) = delete;

    int descriptor() const { return m_descriptor; }

    /// A name that no file has; empty, with errno, when none can be had. What is made under it has to be renamed or
    /// removed.
    std::string hiddenName();
    /// Removes what hiddenName() stood for. What cannot be removed is left to the next run.
    void removeHidden(const std::string& name);
    /// Something under a hidden name is worth keeping: no later run may remove it.
    void keepHidden();

    /// True, and `status`, when there is such an entry (symbolic links are not followed); else false, with errno.
    bool find(const std::string& name, struct stat& status) const;
    /// All that happened to names is on the disk. False, with errno.
    bool sync() const;

private:
    OutputFolder(int descriptor, bool canSync, const std::string& outputName);
    std::string nameOf(const std::string& owner, std::uint32_t number) const;
    bool lock();
    bool lockAs(const std::string& owner);
    bool reserve(std::uint32_t number);
    void sweep();
    void sweep(const std::string& owner);

    int m_descriptor;
    bool m_canSync;
    std::string m_prefix; ///< of all hidden names for this output
    std::string m_owner; ///< tells apart runs that write the same output at the same time
    std::string m_lockName;
    int m_lock = -1;
    std::uint32_t m_lastNumber = 0;
    std::uint32_t m_reserved = 0; ///< the numbers up to this one are removed when this run is found dead
    bool m_isAllRemoved = true;
};

/// Where a file goes: an entry of a folder.
struct OutputPlace {
    std::shared_ptr<OutputFolder> folder;
    std::string name;
};

/// Splits a path. The folder is `known` when that was opened for the same path, `knownPath`; else it is opened and both
/// are set. A symbolic link is followed when it belongs to this user or to the owner of the folder it lies in: anybody
/// else could have made it in a shared folder to get a file elsewhere overwritten. False, with a sentence in `reason`,
/// when no file can be there.
bool findPlace(const std::string& path, std::shared_ptr<OutputFolder>& known, std::string& knownPath,
    OutputPlace& place, std::string& reason);

/// "cannot be written: " and what the system says about `error`.
std::string writeReason(int error);

} // namespace quillrip
