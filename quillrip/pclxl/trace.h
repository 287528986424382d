#pragma once

#include "quillrip/pclxl/attribute_list.h"
#include "quillrip/pclxl/command_table.h"

#include <string>

namespace quillrip::pclxl {

/// An operator with its attributes as a trace shows them: "SetCursor Point=300,450". Of long arrays only the beginning
/// and the number of elements are shown.
std::string traceOf(const CommandEntry& command, const AttributeList& operands);

} // namespace quillrip::pclxl
