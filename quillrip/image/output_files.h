#pragma once

#include "quillrip/image/output_file.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

/// The files of one document, written one after the other, which appear together at the end or not at all.
///
/// Each file stays open until then, because it has no name. What is more than the system lets a process open has hidden
/// names instead.
class OutputFiles {
public:
    struct Options {
        /// All files are on the disk when commit() returns, not only those that take a former one's place.
        bool areDurable = false;
        OutputFile::Naming naming = OutputFile::Naming::Unnamed;
        std::size_t openFiles = 0; ///< 0: what the system allows, with some left for the rest of the process
    };

    explicit OutputFiles(const Options& options);

    /// Finds out whether `target`, the document's first file, can be written, and begins it.
    [[nodiscard]] bool open(const std::string& target);
    /// What is appended from now on goes to the file that will be `target`. All are false, with reason(), once one
    /// of them failed.
    [[nodiscard]] bool begin(const std::string& target);
    [[nodiscard]] bool append(ByteView bytes);
    /// All files appear, the first one last, or, after a failure, none: then the former ones are as they were.
    [[nodiscard]] bool commit();

    /// Descriptors of the folders that the files begun so far lie in.
    std::vector<int> folders() const;
    /// The file that was begun last, for formats that write out of order.
    OutputFile& file() { return *m_files.back(); }
    /// Begins with the name of the file unless that is the first one.
    const std::string& reason() const { return m_reason; }

    /// What all files together may have from now on; none of them fails for a little more. Any thread may say so.
    void setMostBytes(std::uint64_t bytes) { m_mostBytes = bytes; }
    /// Counts bytes that are going to be written past append(); false when they are too many.
    [[nodiscard]] bool spend(std::uint64_t bytes);
    /// The failure was that of spend().
    bool isOverspent() const { return m_isOverspent; }

private:
    bool add(const std::string& target);
    bool fail(const std::string& target, const std::string& reason);
    bool fail(std::size_t index) { return fail(m_targets[index], m_files[index]->reason()); }
    bool prepareAll();
    bool syncFolders();

    Options m_options;
    std::shared_ptr<OutputFolder> m_folder; ///< that of the first file
    std::string m_folderPath;
    bool m_isOnlyOpen = false; ///< open() has made the first file, and it was not begun yet
    std::vector<std::string> m_targets; ///< of m_files
    std::vector<std::unique_ptr<OutputFile>> m_files;
    std::atomic<std::uint64_t> m_mostBytes { UINT64_MAX };
    std::uint64_t m_bytes = 0;
    std::atomic<bool> m_isOverspent { false };
    std::string m_reason;
};

} // namespace quillrip
