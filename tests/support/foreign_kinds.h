#pragma once

#include <string>
#include <vector>

namespace quillrip::test {

/// The beginning of a file that is no print job for quillrip, and what a message about it has to say.
struct ForeignKind {
    std::string title; ///< letters and digits only
    std::string bytes;
    std::string name;
};

/// One of each kind that is recognised and refused, none longer than a few hundred bytes.
std::vector<ForeignKind> foreignKinds();

} // namespace quillrip::test
