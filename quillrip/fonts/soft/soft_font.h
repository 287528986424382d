#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/fonts/faces/typeface.h"

#include <cstdint>
#include <memory>

namespace quillrip {

/// A font that a job brings along: header first, characters one by one.
class SoftFont : public Typeface {
public:
    /// From the data of the PCL 5 font header command, formats 0, 10, 11, 15, 16 and 20. Null when no font results.
    static std::shared_ptr<SoftFont> fromPclHeader(ByteView header, const Reporter& reporter);
    /// From all ReadFontHeader data of a PCL XL font, put together. Null when no font results.
    static std::shared_ptr<SoftFont> fromPclXlHeader(ByteView header, const Reporter& reporter);

    /// One block of the PCL 5 character command: a descriptor, or a continuation of the character begun before.
    /// False when nothing came of it.
    virtual bool addPclCharacter(std::uint32_t code, ByteView block, const Reporter& reporter) = 0;
    /// The data of one PCL XL ReadChar. False when nothing came of it.
    virtual bool addPclXlCharacter(std::uint32_t code, ByteView data, const Reporter& reporter) = 0;
    virtual void removeCharacter(std::uint32_t code) = 0;

    /// An independent copy, with an id() of its own.
    virtual std::shared_ptr<SoftFont> copy() const = 0;

    /// The built-in face whose shapes stand for outlines that cannot be drawn; SoftFontStore::put() gives it.
    virtual void lendShapes(const std::shared_ptr<const Typeface>& face) { (void)face; }

    /// Memory held, for Limits::fontBytes.
    virtual std::size_t bytes() const = 0;
};

} // namespace quillrip
