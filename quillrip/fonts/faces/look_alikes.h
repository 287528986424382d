#pragma once

namespace quillrip {

/// A more common character that looks like a rare one; 0 when there is none.
char32_t lookAlike(char32_t unicode);

} // namespace quillrip
