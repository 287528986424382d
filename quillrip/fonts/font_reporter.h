#pragma once

#include "quillrip/base/reporter.h"

namespace quillrip {

/// Where the font code reports what it had to do differently.
using FontReporter = Reporter;

} // namespace quillrip
