#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/image/output_folder.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip {

/// A file that is not there before it is whole.
///
/// It lies in its folder without a name (open(2), O_TMPFILE), so that a killed process leaves nothing; where the file
/// system has no such files, under a hidden name, which the next run with the same output removes.
///
/// It appears in three steps, so that several files can appear together: prepare() does all that takes room or time,
/// appear() gives it its name, and settle() or withdraw() makes that final or takes it back.
class OutputFile {
public:
    enum class Naming {
        Unnamed, ///< where possible
        Hidden, ///< for the systems that have no unnamed files, and for more files than can be open at once
    };

    /// Null, and a sentence in `reason`, when no regular file can be made or replaced there. Reasons do not say the
    /// name: "cannot be written: ...".
    static std::unique_ptr<OutputFile> create(
        const OutputPlace& place, std::string& reason, Naming naming = Naming::Unnamed);
    /// Closes the file; removes it unless it has appeared.
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// Adds to the end; small pieces are gathered. All that can fail are false, with reason(), once one of them failed.
    [[nodiscard]] bool append(ByteView bytes);
    [[nodiscard]] bool writeAt(std::uint64_t offset, ByteView bytes);
    [[nodiscard]] bool readAt(std::uint64_t offset, std::uint8_t* bytes, std::size_t count);
    [[nodiscard]] bool flush();
    /// Nothing more is written: the file needs no descriptor until it appears, unless it has no name.
    [[nodiscard]] bool park();

    std::uint64_t size() const { return m_size; }
    const std::string& reason() const { return m_reason; }
    const OutputPlace& place() const { return m_place; }

    /// Everything is written and a former file of the name is saved under a hidden one. What takes a former file's
    /// place is on the disk first, and has its mode; what takes none is with `isDurable`: otherwise a crash of the
    /// machine can lose it, but nothing that was there before.
    [[nodiscard]] bool prepare(bool isDurable);
    /// prepare() has met a former file.
    bool replacesFile() const { return !m_saved.empty(); }
    /// The file is there, in place of a former one.
    [[nodiscard]] bool appear();
    /// Takes appear() back: the former file, if any, is at its place again. False, with reason() telling where it is,
    /// when the system does not put it back.
    [[nodiscard]] bool withdraw();
    /// Makes appear() final.
    void settle();

private:
    explicit OutputFile(OutputPlace place);
    bool open(Naming naming);
    bool reopen();
    bool fail(int error);
    bool writeGathered();
    bool saveFormer();
    bool copyFormer();
    bool linkTo(const std::string& name) const;
    int folder() const { return m_place.folder->descriptor(); }

    OutputPlace m_place;
    std::string m_hidden; ///< the name that this file has meanwhile
    std::string m_saved; ///< the name that the former file has meanwhile, besides its own
    int m_descriptor = -1;
    bool m_hasAppeared = false;
    std::uint64_t m_size = 0;
    std::vector<std::uint8_t> m_gathered; ///< the file's end, not written yet
    std::string m_reason;
};

} // namespace quillrip
