#pragma once

#include "quillrip/emf/dib.h"

#include <cstdint>
#include <memory>
#include <string>

namespace quillrip::emf {

/// The rows of a JPEG or PNG file, decoded as they are asked for. The file's bytes must outlive it.
class ImageRows {
public:
    virtual ~ImageRows() = default;
    ImageRows(const ImageRows&) = delete;
    ImageRows& operator=(const ImageRows&) = delete;

    const PictureShape& shape() const { return m_shape; }
    /// Writes shape().rowBytes(). Rows from the top cost one pass; one that is above the last begins another. From the
    /// place on where the file is damaged, rows are white.
    void row(int y, std::uint8_t* to);
    /// As far as it has been read.
    bool isDamaged() const { return m_isDamaged; }

protected:
    ImageRows() = default;

    /// To the first row, again when need be. False when the file is damaged; so with next().
    virtual bool begin() = 0;
    /// The row that follows.
    virtual bool next(std::uint8_t* to) = 0;

    PictureShape m_shape; ///< from the first begin() on

private:
    int m_next = 0;
    bool m_isDamaged = false;
};

/// Null, with the reason in `problem`, when the file cannot be read or has more than `mostPixels`.
std::unique_ptr<ImageRows> openJpeg(ByteView file, std::uint64_t mostPixels, std::string& problem);
/// The same; null without a reason for an interlaced file, of which no row is whole before the end.
std::unique_ptr<ImageRows> openPng(ByteView file, std::uint64_t mostPixels, std::string& problem);
/// Either, of what a DIB may have.
std::unique_ptr<ImageRows> openImageFile(ByteView file, std::string& problem);

} // namespace quillrip::emf
