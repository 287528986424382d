#pragma once

#include "quillrip/base/input_stream.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace quillrip {

/// A temporary file without a name: it goes when it is closed, even if the process is killed.
class SpoolFile {
public:
    SpoolFile() = default;
    ~SpoolFile();
    SpoolFile(const SpoolFile&) = delete;
    SpoolFile& operator=(const SpoolFile&) = delete;

    /// Takes the input up to a Universal Exit that a job can follow, or to its end, into a new file. Data in tagged
    /// binary form (0x01 'M' in front; a byte behind 0x01 has lost bit 6) is decoded when `decodesTagged`. False when
    /// the file cannot be made or written.
    [[nodiscard]] bool fill(InputStream& input, bool decodesTagged);

    /// Makes an empty one. False, with errno, when that cannot be.
    [[nodiscard]] bool create();
    /// Appends. False, with errno, when there is no room.
    [[nodiscard]] bool write(const std::uint8_t* bytes, std::size_t count);

    /// Where the file is made: what TMPDIR names, or /tmp.
    static std::string folder();
    /// After fill() it stands at the file's start; -1 before fill() and create().
    int descriptor() const { return m_descriptor; }

private:
    int m_descriptor = -1;
};

} // namespace quillrip
