#pragma once

#include "quillrip/hpgl/mnemonics.h"

#include <vector>

namespace quillrip::hpgl {

class Command;
class Plotter;

/// Carries a command out.
using Handler = void (*)(Plotter& plotter, Command& command);

struct CommandEntry {
    Mnemonic mnemonic;
    Handler handler;
};

/// The commands that do something, in the order of their mnemonics.
const std::vector<CommandEntry>& commandTable();
/// Null where nothing is to be done.
Handler findHandler(Mnemonic mnemonic);

} // namespace quillrip::hpgl
