#include "quillrip/base/reporter.h"

#include <cstdio>

namespace quillrip {

std::string Reporter::spelled(double number)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.10g", number);
    return text;
}

} // namespace quillrip
