#pragma once

#include "quillrip/base/work_meter.h"
#include "quillrip/emf/dib.h"

#include <cstdint>
#include <memory>
#include <string>

namespace quillrip::emf {

/// The rows of a picture, made when they are asked for: no more of it is held than its coding needs. The bytes that it
/// is made of, and the work meter, must outlive it.
class ImageRows {
public:
    virtual ~ImageRows() = default;
    ImageRows(const ImageRows&) = delete;
    ImageRows& operator=(const ImageRows&) = delete;

    const PictureShape& shape() const { return m_shape; }
    /// Writes shape().rowBytes(). Rows from the top cost one pass over the picture; one that is above the last may
    /// begin another. What is not there is white; so is all that comes when the work meter is exhausted.
    virtual void row(int y, std::uint8_t* to) = 0;
    /// As far as it has been read.
    bool isDamaged() const { return m_isDamaged; }

protected:
    /// `unitsPerPixel`: what it costs to make one (WorkMeter).
    ImageRows(WorkMeter& work, std::uint32_t unitsPerPixel)
        : m_work(work)
        , m_unitsPerPixel(unitsPerPixel)
    {
    }

    /// Charges pixels that are about to be made. False: they are to be left out.
    [[nodiscard]] bool mayMake(std::uint64_t pixels) { return m_work.allows(Work::Decoding, pixels * m_unitsPerPixel); }
    void setDamaged(bool isDamaged) { m_isDamaged = isDamaged; }
    void whiten(std::uint8_t* row) const;

    PictureShape m_shape;

private:
    WorkMeter& m_work;
    std::uint32_t m_unitsPerPixel;
    bool m_isDamaged = false;
};

/// Rows that can only be decoded from the top down, each once.
class SequentialRows : public ImageRows {
public:
    void row(int y, std::uint8_t* to) final;

protected:
    using ImageRows::ImageRows;

    /// To the first row, again when need be; m_shape is known from then on. False when the file is damaged; so with
    /// next().
    virtual bool begin() = 0;
    /// The row that follows.
    virtual bool next(std::uint8_t* to) = 0;

private:
    int m_next = 0;
};

/// What is said of a picture that is damaged.
constexpr const char* kDamagedImageFile = "its image file is damaged";
/// What a pixel of a compressed file costs to decode.
constexpr std::uint32_t kUnitsPerCodedPixel = 10;

/// Null, with the reason in `problem`, when the file cannot be read or has more than `mostPixels`. Grey and indexed
/// files come as Rgb24, transparent ones as Rgba32. What of a damaged file comes before the damage is there.
std::unique_ptr<ImageRows> openJpeg(ByteView file, std::uint64_t mostPixels, WorkMeter& work, std::string& problem);
/// The same.
std::unique_ptr<ImageRows> openPng(ByteView file, std::uint64_t mostPixels, WorkMeter& work, std::string& problem);
bool isPngFile(ByteView file);

/// A device-independent bitmap: `header` with its colour table, and `bits`. All depths of 1 to 32 bits, bit fields,
/// RLE4 and RLE8, JPEG and PNG inside. Null, with the reason in `problem`, when it cannot be read or is above a limit;
/// where the bits do not reach its last row, `problem` says so.
std::unique_ptr<ImageRows> openDib(
    ByteView header, ByteView bits, const DibContext& context, WorkMeter& work, std::string& problem);
/// A bitmap file as a whole (`BM`, then a DIB).
std::unique_ptr<ImageRows> openBitmapFile(ByteView file, WorkMeter& work, std::string& problem);

/// All of them, for what needs a picture as a whole.
Pixels pixelsOf(ImageRows& rows);

} // namespace quillrip::emf
