#pragma once

#include "quillrip/pclxl/attribute_list.h"
#include "quillrip/pclxl/status.h"

#include <cstddef>
#include <cstdint>

namespace quillrip::pclxl {

class Machine;

/// A set of data types: one bit for each shape and element.
using TypeSet = std::uint32_t;

constexpr TypeSet typeBit(Shape shape, Element element)
{
    return TypeSet { 1 } << (static_cast<unsigned>(shape) * 6 + static_cast<unsigned>(element));
}

constexpr TypeSet allElements(Shape shape) { return TypeSet { 0x3F } << (static_cast<unsigned>(shape) * 6); }

/// Generators differ in the numbers' types more than the language allows, so every number is taken where one belongs;
/// what must fit is the shape, and the elements of arrays.
constexpr TypeSet kScalar = allElements(Shape::Scalar);
constexpr TypeSet kXy = allElements(Shape::Xy);
constexpr TypeSet kBox = allElements(Shape::Box);
constexpr TypeSet kNumbers = allElements(Shape::Array);
constexpr TypeSet kBytes = typeBit(Shape::Array, Element::UByte);
constexpr TypeSet kCodes = kBytes | typeBit(Shape::Array, Element::UInt16);
constexpr TypeSet kColor = kBytes | typeBit(Shape::Array, Element::Real32);
constexpr TypeSet kAnyType = kScalar | kXy | kBox | kNumbers;

enum class Need : std::uint8_t {
    Optional,
    Required,
    Choice, ///< exactly one of the operator's choices must be there
};

struct AttributeRule {
    Attribute attribute;
    TypeSet types;
    Need need;
};

struct AttributeRules {
    const AttributeRule* first = nullptr;
    std::size_t count = 0;

    const AttributeRule* begin() const { return first; }
    const AttributeRule* end() const { return first + count; }
};

/// The parts of a printer that error reports name.
enum class Subsystem : std::uint8_t { Kernel, Paint, Text, Image };

/// Where an operator may stand, as bits.
enum Place : std::uint8_t {
    kOutside = 1, ///< no session is open
    kInSession = 2, ///< a session is open, no page
    kInPage = 4,
    kSessionOrPage = kInSession | kInPage,
    kAnywhere = kOutside | kSessionOrPage,
};

/// Definitions that a Begin operator opens and an End operator closes; in between only their own operators may stand.
enum class Definition : std::uint8_t { None, FontHeader, Character, Stream, Image, Pattern, Scan, Any };

/// Carries an operator out whose operands have been checked.
using Handler = Status (*)(Machine& machine);

/// An operator of the language: where it may stand, what it takes, and who carries it out.
struct CommandEntry {
    Operator tag;
    const char* name;
    Subsystem subsystem;
    std::uint8_t places;
    Definition within;
    bool takesData; ///< embedded data follow it, or may
    Handler run;
    AttributeRules rules;
};

/// All commands, by number.
struct CommandTable {
    const CommandEntry* first;
    std::size_t count;

    const CommandEntry* begin() const { return first; }
    const CommandEntry* end() const { return first + count; }
};
CommandTable commandTable();

/// Null for a tag that is no operator.
const CommandEntry* find(std::uint8_t tag);

/// "?" for an unassigned number.
const char* nameOf(Attribute attribute);
const char* nameOf(Subsystem subsystem);

/// Holds the operands against the rules of their operator: what must be there, types, values of enumerations, finite
/// numbers. `ignored` becomes an attribute that the operator does not know, if there is one; that is no error.
Status validate(const CommandEntry& command, const AttributeList& operands, Attribute& ignored);

} // namespace quillrip::pclxl
