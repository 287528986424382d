#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/hpgl/end.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip::hpgl {

/// The bytes of one plot within a longer input: ends before a Universal Exit and behind a reset.
class PlotSource final : public InputStream {
public:
    explicit PlotSource(InputStream& input)
        : m_input(input)
    {
    }
    /// Why there is no more, once everything was read: InputEnded, UniversalExit or Reset.
    End end() const { return m_end; }

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override;

private:
    /// Bytes of an escape sequence, or of what is left of one, and its binary data that begin here.
    std::uint64_t escapeLength();

    InputStream& m_input;
    End m_end = End::InputEnded;
    bool m_isOver = false;
    std::uint64_t m_opaque = 0; ///< bytes that are data, whatever they look like
    bool m_isInSequence = false; ///< behind them a combined escape sequence goes on
    char m_prefix = 0; ///< which began with these characters
    char m_group = 0;
};

/// Bytes that were kept, and then the rest of where they came from.
class ReplayStream final : public InputStream {
public:
    ReplayStream(const std::vector<std::uint8_t>& kept, InputStream& rest)
        : m_kept(kept)
        , m_rest(rest)
    {
    }

protected:
    std::size_t pull(std::uint8_t* to, std::size_t count) override;

private:
    const std::vector<std::uint8_t>& m_kept;
    InputStream& m_rest;
    std::size_t m_at = 0;
};

} // namespace quillrip::hpgl
