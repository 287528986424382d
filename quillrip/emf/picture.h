#pragma once

#include "quillrip/emf/dib_reader.h"
#include "quillrip/emf/image_rows.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip::emf {

/// A picture of a record. Its rows are made when they are drawn, from the record's bytes: only an interlaced PNG
/// file is held as a whole. The bytes must outlive it.
class Picture {
public:
    Picture() = default;
    /// Null, with the reason in `problem`, when it cannot be read.
    Picture(ByteView header, ByteView bits, const DibContext& context, std::string& problem);

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
    DibReader m_reader;
    std::shared_ptr<ImageRows> m_imageRows; ///< of an image file; null: there is none, or it had to be read whole
    std::shared_ptr<const Pixels> m_whole; ///< null: the rows are made
};

} // namespace quillrip::emf
