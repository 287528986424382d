#pragma once

#include "quillrip/base/input_stream.h"

#include <cstddef>
#include <vector>

namespace quillrip::hpgl {

/// A command on its way to its handler. One object serves a whole run, so that its memory is used again.
class Command {
public:
    explicit Command(InputStream& source)
        : input(source)
    {
    }

    InputStream& input; ///< behind the mnemonic, for handlers that read their operands themselves; else behind all
    std::vector<double> operands;
    bool isContinued = false; ///< the handler has seen operands of the same command before

    bool empty() const { return operands.empty(); }
    std::size_t count() const { return operands.size(); }
    double operand(std::size_t index, double otherwise = 0) const
    {
        return index < operands.size() ? operands[index] : otherwise;
    }
    /// False for what no number of the language is, as programs write that have divided by zero.
    bool isInRange(std::size_t index) const;
    /// Rounded and cut to -32768 ... 32767.
    int clampedInteger(std::size_t index, int otherwise = 0) const;
    /// Cut to -32768 ... 32767.9999.
    double clampedReal(std::size_t index, double otherwise = 0) const;
};

} // namespace quillrip::hpgl
