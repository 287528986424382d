#pragma once

#include "quillrip/base/bytes.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

/// A file that is not there before it is whole.
///
/// It lies in its target's folder without a name (open(2), O_TMPFILE), so that a killed process leaves nothing; where
/// the file system has no such files, under a hidden name. A target that is a symbolic link is followed: the file
/// behind the link gets replaced, the link stays.
class OutputFile {
public:
    enum class Naming {
        Unnamed, ///< where possible
        Hidden, ///< for the systems that have no unnamed files, and to test what is done there
    };

    /// Null, and a sentence in `reason`, when no regular file can be made or replaced under this name. Reasons do not
    /// say the name: "cannot be written: ...".
    static std::unique_ptr<OutputFile> create(
        const std::string& target, std::string& reason, Naming naming = Naming::Unnamed);
    /// Closes the file; removes it unless it was published.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Adds to the end; small pieces are gathered. All four are false, with reason(), once one of them failed.
    [[nodiscard]] bool append(ByteView bytes);
    [[nodiscard]] bool writeAt(std::uint64_t offset, ByteView bytes);
    [[nodiscard]] bool readAt(std::uint64_t offset, std::uint8_t* bytes, std::size_t count);
    [[nodiscard]] bool flush();

    std::uint64_t size() const { return m_size; }
    const std::string& reason() const { return m_reason; }
    /// The path that the file appears under, links followed.
    const std::string& target() const { return m_target; }

    /// Makes the file appear, in place of a former one, and closes it. The former one is kept aside until settle().
    [[nodiscard]] bool publish();
    /// Takes publish() back: the former file, if any, is at its place again.
    void withdraw();
    /// Makes publish() final.
    void settle();

private:
    OutputFile(std::string target, std::string folder);
    bool open(Naming naming);
    bool fail(const char* what, int error);
    std::string hiddenName() const;
    /// Gives the unnamed file a name; false, with errno, when that is impossible or the name is taken.
    bool linkTo(const std::string& name) const;
    bool published();

    std::string m_target;
    std::string m_folder; ///< with its final slash; empty for the current one
    std::string m_hidden; ///< the name that this file, or after publish() the former file, has meanwhile
    int m_descriptor = -1;
    bool m_isPublished = false;
    std::uint64_t m_size = 0;
    std::vector<std::uint8_t> m_gathered; ///< the file's end, not written yet
    std::string m_reason;
};

} // namespace quillrip
