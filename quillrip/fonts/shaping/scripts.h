#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace quillrip {

/// Whether a line with this character asks for more than a glyph for each character, one behind the other: letters that
/// are written from right to left, join, combine or change places, marks that stand over or under letters, and
/// characters without a shape that steer these (Unicode).
bool needsShaping(char32_t character);
bool needsShaping(const std::u32string& text);

/// Has no shape of its own and no width: joiners, direction marks, variation selectors.
bool isInvisible(char32_t character);

/// Has a shape: a letter, mark, figure, punctuation or symbol. No blank, control or private character.
bool leavesMark(char32_t character);

/// Goes along with the character before it: marks, joiners, variation selectors.
bool isAttached(char32_t character);

/// The one character that a letter and a mark behind it are the same as; 0 when there is none.
char32_t composed(char32_t letter, char32_t mark);
/// The character that stands for another, such as a bracket, where text runs from right to left; mostly itself.
char32_t mirrored(char32_t character);

/// Characters of one direction that are drawn in one way.
struct ScriptRun {
    std::size_t begin = 0;
    std::size_t end = 0;
    /// The ISO 15924 tag as four bytes; 0: each character is its own glyph.
    std::uint32_t script = 0;
};

/// Cuts `text` from `begin` to `end`, in the order of reading, so that letters of a script that shapes them lie
/// together with their marks, and all else is left to its own glyphs. A letter of another script whose marks have to be
/// placed is a run of its own.
std::vector<ScriptRun> scriptRunsOf(const std::u32string& text, std::size_t begin, std::size_t end);

} // namespace quillrip
