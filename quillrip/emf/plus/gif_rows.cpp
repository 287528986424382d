// GIF files of EMF+ images.

#include "quillrip/emf/plus/image_files.h"
#include "quillrip/emf/plus/memory_file.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include <gif_lib.h>

namespace quillrip::emf::plus {

namespace {

int readGif(GifFileType* gif, GifByteType* to, int count)
{
    return static_cast<int>(static_cast<MemoryFile*>(gif->UserData)->read(to, static_cast<std::size_t>(count)));
}

struct GifCloser {
    void operator()(GifFileType* gif) const { DGifCloseFile(gif, nullptr); }
};

/// Reads one file from its beginning on.
class GifReader {
public:
    explicit GifReader(ByteView file)
        : m_file { file }
    {
    }
    GifReader(const GifReader&) = delete;
    GifReader& operator=(const GifReader&) = delete;

    /// Goes on to the first picture. False when there is none that can be drawn.
    bool open()
    {
        int error = 0;
        m_gif.reset(DGifOpen(&m_file, readGif, &error));
        return m_gif && findPicture() && colors() && isDrawableSize(m_gif->SWidth, m_gif->SHeight)
            && isDrawableSize(picture().Width, picture().Height);
    }
    int screenWidth() const { return m_gif->SWidth; }
    int screenHeight() const { return m_gif->SHeight; }
    const GifImageDesc& picture() const { return m_gif->Image; }
    const ColorMapObject* colors() const { return picture().ColorMap ? picture().ColorMap : m_gif->SColorMap; }
    /// The number of the colour that is not drawn, or -1.
    int transparent() const { return m_transparent; }

    /// The row that follows, picture().Width numbers. False when the file is damaged.
    bool read(GifByteType* line) { return DGifGetLine(m_gif.get(), line, picture().Width) != GIF_ERROR; }

private:
    /// The transparent colour stands in an extension before the picture.
    bool findPicture();

    MemoryFile m_file;
    std::unique_ptr<GifFileType, GifCloser> m_gif;
    int m_transparent = -1;
};

bool GifReader::findPicture()
{
    for (;;) {
        GifRecordType type = UNDEFINED_RECORD_TYPE;
        if (DGifGetRecordType(m_gif.get(), &type) == GIF_ERROR || type == TERMINATE_RECORD_TYPE)
            return false;
        if (type == IMAGE_DESC_RECORD_TYPE)
            return DGifGetImageDesc(m_gif.get()) == GIF_OK;
        if (type != EXTENSION_RECORD_TYPE)
            continue;
        int code = 0;
        GifByteType* block = nullptr;
        if (DGifGetExtension(m_gif.get(), &code, &block) == GIF_ERROR)
            return false;
        while (block) {
            if (code == GRAPHICS_EXT_FUNC_CODE && block[0] >= 4 && block[1] & 1)
                m_transparent = block[4];
            if (DGifGetExtensionNext(m_gif.get(), &block) == GIF_ERROR)
                return false;
        }
    }
}

/// The order of rows in a file: every so many of them, pass after pass.
struct Pass {
    int firstRow;
    int rowStep;

    int rows(int height) const { return (height - firstRow + rowStep - 1) / rowStep; }
};

constexpr std::array<Pass, 1> kPlain { { { 0, 1 } } };
constexpr std::array<Pass, 4> kInterlaced { { { 0, 8 }, { 4, 8 }, { 2, 4 }, { 1, 2 } } };

/// Of an interlaced file, each pass has a reader of its own: together they decode it less than twice.
class GifRows : public ImageRows {
public:
    GifRows(ByteView file, WorkMeter& work)
        : ImageRows(work, kUnitsPerCodedPixel)
        , m_file(file)
    {
    }

    bool open();
    void row(int y, std::uint8_t* to) override;

private:
    struct Progress {
        Pass pass;
        std::unique_ptr<GifReader> reader; ///< null: not begun
        int rows = 0; ///< that have been read
        bool hasEnded = false; ///< by damage, or because there is no more work
    };

    /// The picture's row in m_line; false when it is not there.
    bool find(int y);
    bool begin(std::size_t at);
    bool readRows(Progress& progress, int count);
    void paint(std::uint8_t* to) const;

    ByteView m_file;
    std::vector<Progress> m_passes; ///< in the file's order
    std::unique_ptr<GifReader> m_head; ///< where the picture lies, and its colours
    std::vector<GifByteType> m_line;
};

bool GifRows::open()
{
    m_head = std::make_unique<GifReader>(m_file);
    if (!m_head->open())
        return false;
    m_shape.format = PictureShape::Format::Rgba32;
    m_shape.width = m_head->screenWidth();
    m_shape.height = m_head->screenHeight();
    const GifImageDesc& picture = m_head->picture();
    const bool coversScreen = picture.Left <= 0 && picture.Top <= 0 && picture.Left + picture.Width >= m_shape.width
        && picture.Top + picture.Height >= m_shape.height;
    constexpr int numbers = 256;
    m_shape.hasAlpha = !coversScreen || m_head->transparent() >= 0 || m_head->colors()->ColorCount < numbers;
    m_line.resize(static_cast<std::size_t>(picture.Width));
    const auto add = [this](const Pass& pass) { m_passes.push_back({ pass, nullptr, 0, false }); };
    if (picture.Interlace) {
        for (const Pass& pass : kInterlaced)
            add(pass);
    } else {
        add(kPlain[0]);
    }
    return true;
}

bool GifRows::readRows(Progress& progress, int count)
{
    for (; count > 0; --count) {
        if (!mayMake(m_line.size()))
            return false;
        if (!progress.reader->read(m_line.data())) {
            setDamaged(true);
            return false;
        }
    }
    return true;
}

/// To the first row of a pass, past those before it.
bool GifRows::begin(std::size_t at)
{
    Progress& progress = m_passes[at];
    progress.rows = 0;
    progress.reader = std::make_unique<GifReader>(m_file);
    if (!progress.reader->open())
        return false;
    for (std::size_t before = 0; before < at; ++before) {
        if (!readRows(progress, m_passes[before].pass.rows(m_head->picture().Height)))
            return false;
    }
    return true;
}

bool GifRows::find(int y)
{
    std::size_t at = 0;
    while (y < m_passes[at].pass.firstRow || (y - m_passes[at].pass.firstRow) % m_passes[at].pass.rowStep != 0)
        ++at;
    Progress& progress = m_passes[at];
    const int wanted = (y - progress.pass.firstRow) / progress.pass.rowStep + 1;
    if (wanted <= progress.rows || (!progress.reader && !progress.hasEnded))
        progress.hasEnded = !begin(at);
    for (; !progress.hasEnded && progress.rows < wanted; ++progress.rows) {
        if (!readRows(progress, 1))
            break;
    }
    progress.hasEnded = progress.rows < wanted;
    return !progress.hasEnded;
}

void GifRows::paint(std::uint8_t* to) const
{
    const GifImageDesc& picture = m_head->picture();
    const ColorMapObject& colors = *m_head->colors();
    for (int x = 0; x < picture.Width; ++x) {
        const int column = picture.Left + x;
        const int index = m_line[static_cast<std::size_t>(x)];
        if (column < 0 || column >= m_shape.width || index == m_head->transparent() || index >= colors.ColorCount)
            continue;
        const GifColorType& color = colors.Colors[index];
        std::uint8_t* const pixel = to + static_cast<std::size_t>(column) * 4;
        pixel[0] = color.Red;
        pixel[1] = color.Green;
        pixel[2] = color.Blue;
        pixel[3] = 255;
    }
}

void GifRows::row(int y, std::uint8_t* to)
{
    if (m_shape.hasAlpha)
        std::memset(to, 0, m_shape.rowBytes());
    else
        whiten(to);
    const GifImageDesc& picture = m_head->picture();
    const int inPicture = y - picture.Top;
    if (inPicture >= 0 && inPicture < picture.Height && find(inPicture))
        paint(to);
}

} // namespace

std::unique_ptr<ImageRows> openGif(ByteView file, WorkMeter& work, std::string& problem)
{
    auto rows = std::make_unique<GifRows>(file, work);
    if (rows->open())
        return rows;
    problem = "its GIF file cannot be read";
    return nullptr;
}

} // namespace quillrip::emf::plus
