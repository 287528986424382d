#pragma once

#include "quillrip/emf/plus/canvas.h"
#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/emf/plus/machine.h"
#include "quillrip/emf/plus/record_reader.h"

#include <cstdint>
#include <memory>
#include <optional>

namespace quillrip::emf::plus {

// Operands that records share ([MS-EMFPLUS] 2.3.4).

constexpr std::uint16_t kColorInPlaceOfBrush = 0x8000;
constexpr std::uint16_t kIntegerOperands = 0x4000;
constexpr std::uint16_t kClosed = 0x2000;
constexpr std::uint16_t kWindingFill = 0x2000;
constexpr std::uint16_t kRelativeOperands = 0x0800;

inline PointForm pointFormOf(const Record& record)
{
    return record.flags & kRelativeOperands ? PointForm::Relative
        : record.flags & kIntegerOperands   ? PointForm::Integer
                                            : PointForm::Float;
}

inline PointForm rectFormOf(const Record& record)
{
    return record.flags & kIntegerOperands ? PointForm::Integer : PointForm::Float;
}

/// A brush's number or a colour. Nothing, with a warning, when there is no such brush.
std::optional<Paint> readPaint(Machine& machine, const Record& record, FieldReader& fields);
/// Null, with a warning, when there is no such pen.
std::shared_ptr<const PenObject> findPen(Machine& machine, std::uint32_t id);
std::shared_ptr<const PathObject> findPath(Machine& machine, std::uint32_t id);
std::shared_ptr<const RegionObject> findRegion(Machine& machine, std::uint32_t id);
std::shared_ptr<const ImageObject> findImage(Machine& machine, std::uint32_t id);
std::shared_ptr<const FontObject> findFont(Machine& machine, std::uint32_t id);

} // namespace quillrip::emf::plus
