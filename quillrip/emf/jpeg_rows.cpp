// JPEG files that lie in bitmaps.

#include "quillrip/base/jpeg_reader.h"
#include "quillrip/emf/image_rows.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quillrip::emf {

namespace {

class WholeFile final : public JpegSource {
public:
    explicit WholeFile(ByteView file)
        : m_file(file)
    {
    }
    ByteView next() override { return std::exchange(m_file, {}); }

private:
    ByteView m_file;
};

class JpegRows : public SequentialRows {
public:
    JpegRows(ByteView file, std::uint64_t mostPixels, WorkMeter& work)
        : SequentialRows(work, kUnitsThatTheReaderLeaves)
        , m_file(file)
        , m_mostPixels(mostPixels)
        , m_work(work)
    {
    }

    bool begin() override;
    /// Why there is no row.
    std::string problem() const;

private:
    static constexpr std::uint32_t kUnitsThatTheReaderLeaves = 0;

    /// From the file's beginning.
    struct Pass {
        WholeFile source;
        JpegReader reader;

        Pass(ByteView file, WorkMeter& work)
            : source(file)
            , reader(source, work)
        {
        }
    };

    bool next(std::uint8_t* to) override;

    ByteView m_file;
    std::uint64_t m_mostPixels;
    WorkMeter& m_work;
    std::optional<Pass> m_pass;
    bool m_isTooLarge = false;
    std::vector<std::uint8_t> m_inks; ///< a row in CMYK; empty: the file has other colours
};

bool JpegRows::begin()
{
    m_pass.emplace(m_file, m_work);
    JpegReader& reader = m_pass->reader;
    if (!reader.readHeader())
        return false;
    jpeg_decompress_struct& info = reader.info();
    const bool isCmyk = info.num_components == 4;
    info.out_color_space = isCmyk ? JCS_CMYK : JCS_RGB;
    m_isTooLarge = std::uint64_t { info.image_width } * info.image_height > m_mostPixels;
    if (m_isTooLarge || !reader.start())
        return false;
    m_shape.width = static_cast<int>(info.output_width);
    m_shape.height = static_cast<int>(info.output_height);
    m_inks.resize(isCmyk ? std::size_t { info.output_width } * 4 : 0);
    return true;
}

std::string JpegRows::problem() const
{
    if (m_work.isExhausted())
        return m_work.reason();
    return m_isTooLarge ? "its JPEG file is too large" : "its JPEG file is damaged";
}

bool JpegRows::next(std::uint8_t* to)
{
    if (!m_pass->reader.readRow(m_inks.empty() ? to : m_inks.data())) {
        whiten(to);
        return m_work.isExhausted();
    }
    // Four channels as the usual writer stores them: inverted.
    for (std::size_t at = 0; at < m_inks.size(); at += 4) {
        for (std::size_t i = 0; i < 3; ++i)
            *to++ = static_cast<std::uint8_t>(m_inks[at + i] * m_inks[at + 3] / 255);
    }
    return true;
}

} // namespace

std::unique_ptr<ImageRows> openJpeg(ByteView file, std::uint64_t mostPixels, WorkMeter& work, std::string& problem)
{
    auto rows = std::make_unique<JpegRows>(file, mostPixels, work);
    if (rows->begin())
        return rows;
    problem = rows->problem();
    return nullptr;
}

} // namespace quillrip::emf
