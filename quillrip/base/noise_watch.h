#pragma once

#include <bitset>
#include <cstddef>
#include <cstdint>

namespace quillrip {

/// Tells binary data from text and from commands in letters. When a count of bytes is wrong, what is left of a raster
/// or a font is printed, thousands of pages of it, since one byte in 256 ends a page.
///
/// It shows by the codes below space that are no control codes: all of them come, one byte in twelve, where text has
/// none, or a few of a kind around its lines. A table of all characters that a printer has is told apart by its length,
/// and soft fonts may have characters there.
class NoiseWatch {
public:
    /// Counts a byte of text. True when it and those before it are no text.
    bool isNoise(std::uint8_t byte, bool isOfSoftFont)
    {
        if (byte < ' ' && !isOfSoftFont) {
            m_kinds.set(byte);
            ++m_codes;
        }
        if (++m_bytes == kStretch)
            endStretch();
        return m_noisyStretches >= kNoisyStretches;
    }

private:
    static constexpr int kStretch = 512; ///< bytes
    static constexpr int kCodes = 24; ///< of a stretch; half of what evenly spread bytes have
    static constexpr std::size_t kKinds = 8; ///< of codes
    static constexpr int kNoisyStretches = 3; ///< one behind the other

    void endStretch()
    {
        const bool isNoisy = m_codes >= kCodes && m_kinds.count() >= kKinds;
        m_noisyStretches = isNoisy ? m_noisyStretches + 1 : 0;
        m_bytes = 0;
        m_codes = 0;
        m_kinds.reset();
    }

    int m_bytes = 0;
    int m_codes = 0;
    std::bitset<32> m_kinds;
    int m_noisyStretches = 0;
};

} // namespace quillrip
