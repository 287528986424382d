#include "quillrip/pclxl/trace.h"

#include "quillrip/base/reporter.h"

#include <algorithm>
#include <cstddef>

namespace quillrip::pclxl {

namespace {

constexpr std::size_t kShownElements = 8;

void appendNumbers(std::string& text, const double* numbers, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i)
        text += (i > 0 ? "," : "") + Reporter::spelled(numbers[i]);
}

void appendArray(std::string& text, const ArrayView& values)
{
    const std::size_t shown = std::min(values.size(), kShownElements);
    text += '[';
    for (std::size_t i = 0; i < shown; ++i)
        text += (i > 0 ? "," : "") + Reporter::spelled(values.at(i));
    text += shown < values.size() ? "... " + std::to_string(values.size()) + "]" : "]";
}

} // namespace

std::string traceOf(const CommandEntry& command, const AttributeList& operands)
{
    std::string text = command.name;
    for (const Operand& operand : operands.operands()) {
        text += std::string(" ") + nameOf(operand.attribute) + "=";
        switch (operand.shape) {
        case Shape::Scalar:
            appendNumbers(text, operand.numbers.data(), 1);
            break;
        case Shape::Xy:
            appendNumbers(text, operand.numbers.data(), 2);
            break;
        case Shape::Box:
            appendNumbers(text, operand.numbers.data(), 4);
            break;
        case Shape::Array:
            appendArray(text, operands.array(operand));
            break;
        }
    }
    return text;
}

} // namespace quillrip::pclxl
