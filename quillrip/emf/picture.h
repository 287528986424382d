#pragma once

#include "quillrip/emf/image_rows.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip::emf {

/// A picture of a record. Its rows are made when they are drawn, from the record's bytes. These, and the work meter,
/// must outlive it.
class Picture {
public:
    Picture() = default;
    /// Null, with the reason in `problem`, when it cannot be read.
    Picture(ByteView header, ByteView bits, const DibContext& context, WorkMeter& work, std::string& problem);

    bool isNull() const { return m_shape.width == 0; }
    /// What the rows that have been read so far showed; a reason as the constructor gives it, empty when there is none.
    std::string damage() const;
    const PictureShape& shape() const { return m_shape; }

    /// Makes it Rgb24, whatever its alpha says.
    void leaveOutAlpha();
    /// Divides the colours of an Rgba32 picture by their alpha, which they were multiplied by.
    void unmultiply();
    /// Makes it Rgba32, with one colour transparent and all others opaque.
    void hide(Rgb color);

    /// A row, from the top. `line` is what it may be written into.
    const std::uint8_t* row(int y, std::vector<std::uint8_t>& line) const;

private:
    enum class View { Stored, WithoutAlpha, Unmultiplied, OneColorHidden };

    PictureShape m_shape; ///< as it is viewed
    PictureShape m_stored;
    View m_view = View::Stored;
    Rgb m_hidden {};
    std::shared_ptr<ImageRows> m_rows;
};

} // namespace quillrip::emf
