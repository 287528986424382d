#pragma once

#include <cstdint>

namespace quillrip {

/// Takes what a scan converter finds. Rows come from top to bottom, spans of a row from left to right, unless the
/// converter says otherwise.
class SpanSink {
public:
    virtual ~SpanSink() = default;
    /// Whole pixels left <= x < right.
    virtual void span(int y, int left, int right) = 0;
    /// `count` pixels from column `left` on, each covered by so many 255ths.
    virtual void coverage(int y, int left, const std::uint8_t* coverage, int count) = 0;
};

} // namespace quillrip
