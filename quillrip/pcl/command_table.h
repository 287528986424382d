#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/pcl/tokenizer.h"

#include <cstdint>
#include <vector>

namespace quillrip::pcl {

class Machine;

/// A command with its data, ready to be carried out.
struct Command {
    Value value;
    ByteView data;
    char prefix = 0;
    char terminator = 0;
};

/// Carries a command out: reads its operands and asks the rooms of the machine.
using Handler = void (*)(Machine&, const Command&);

enum class DataRule : std::uint8_t {
    None,
    Bytes, ///< the value counts the bytes that follow
};

enum class RasterRule : std::uint8_t {
    Ends, ///< ends a raster in progress
    EndsOrMoves, ///< ends it; but an ink-jet's goes on from where the cursor then is
    Within, ///< part of it
    Waits, ///< without effect while it lasts
    BeforeRows, ///< obeyed up to the raster's first row, without effect from then on
    BeforeRowsOrEnds, ///< obeyed up to the raster's first row, ends it from then on
};

/// A parameterised command.
struct CommandEntry {
    char prefix;
    char group; ///< 0: none
    char terminator; ///< 0: any letter not named otherwise
    Handler handler; ///< null: nothing that an image shows
    const char* name;
    DataRule data = DataRule::None;
    RasterRule raster = RasterRule::Ends;

    std::uint32_t key() const
    {
        return (static_cast<std::uint32_t>(static_cast<unsigned char>(prefix)) << 16)
            | (static_cast<std::uint32_t>(static_cast<unsigned char>(group)) << 8)
            | static_cast<std::uint32_t>(static_cast<unsigned char>(terminator));
    }
};

/// ESC and one character.
struct TwoCharacterEntry {
    char code;
    Handler handler;
    const char* name;
};

/// Everything that is understood, sorted by key.
const std::vector<CommandEntry>& commandTable();
const std::vector<TwoCharacterEntry>& twoCharacterTable();

/// Null for what is not in the tables.
const CommandEntry* find(const Token& token);
const TwoCharacterEntry* findTwoCharacter(char code);
/// Bytes of data behind a command, which may be unknown (null).
std::uint64_t dataLength(const Token& token, const CommandEntry* entry);
/// Whether plotters' raster language knows the command.
bool isOfPlotters(const CommandEntry& entry);

} // namespace quillrip::pcl
