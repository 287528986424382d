#include "quillrip/hpgl/command.h"

#include "quillrip/hpgl/number_reader.h"

#include <algorithm>
#include <cmath>

namespace quillrip::hpgl {

bool Command::isInRange(std::size_t index) const { return std::abs(operand(index)) < NumberReader::kLargest; }

int Command::clampedInteger(std::size_t index, int otherwise) const
{
    if (index >= operands.size())
        return otherwise;
    return static_cast<int>(std::lround(std::clamp(operands[index], -32768.0, 32767.0)));
}

double Command::clampedReal(std::size_t index, double otherwise) const
{
    return index < operands.size() ? std::clamp(operands[index], -32768.0, 32767.9999) : otherwise;
}

} // namespace quillrip::hpgl
