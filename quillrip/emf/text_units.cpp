// From the bytes of text records to characters.

#include "quillrip/emf/text.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <vector>

#include <iconv.h>

namespace quillrip::emf {

namespace {

constexpr std::uint8_t kSymbolCharset = 2;
constexpr char32_t kSymbolArea = 0xF000;

struct CharsetPage {
    std::uint8_t charset;
    const char* page; ///< as iconv names it
};

constexpr std::array<CharsetPage, 18> kPages { {
    { 0, "CP1252" },
    { 1, "CP1252" },
    { 77, "MACINTOSH" },
    { 128, "CP932" },
    { 129, "CP949" },
    { 130, "JOHAB" },
    { 134, "CP936" },
    { 136, "CP950" },
    { 161, "CP1253" },
    { 162, "CP1254" },
    { 163, "CP1258" },
    { 177, "CP1255" },
    { 178, "CP1256" },
    { 186, "CP1257" },
    { 204, "CP1251" },
    { 222, "CP874" },
    { 238, "CP1250" },
    { 255, "CP437" },
} };

class Decoder {
public:
    explicit Decoder(std::uint8_t charset)
        : m_charset(charset)
    {
    }
    ~Decoder()
    {
        if (isOpen())
            iconv_close(m_handle);
    }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    /// The character at the start of the bytes and how many of them it has; a byte that is none stands for itself.
    char32_t next(ByteView bytes, std::size_t& used)
    {
        if (!m_wasTried)
            open();
        return read(bytes, used);
    }

private:
    void open()
    {
        m_wasTried = true;
        const auto page = std::find_if(
            kPages.begin(), kPages.end(), [&](const CharsetPage& entry) { return entry.charset == m_charset; });
        m_handle = iconv_open("UCS-4LE", page == kPages.end() ? "CP1252" : page->page);
    }

    char32_t read(ByteView bytes, std::size_t& used)
    {
        constexpr std::size_t kLongest = 2;
        for (used = 1; isOpen() && used <= std::min(kLongest, bytes.size); ++used) {
            char in[kLongest];
            for (std::size_t i = 0; i < used; ++i)
                in[i] = static_cast<char>(bytes[i]);
            std::array<unsigned char, 8> out {};
            char* from = in;
            char* to = reinterpret_cast<char*>(out.data());
            std::size_t left = used;
            std::size_t room = out.size();
            iconv(m_handle, nullptr, nullptr, nullptr, nullptr);
            const bool isDone = iconv(m_handle, &from, &left, &to, &room) != static_cast<std::size_t>(-1)
                && iconv(m_handle, nullptr, nullptr, &to, &room) != static_cast<std::size_t>(-1);
            if (isDone && room <= out.size() - 4)
                return out[0] | char32_t { out[1] } << 8 | char32_t { out[2] } << 16;
        }
        used = 1;
        return bytes[0];
    }

    bool isOpen() const { return m_handle != kNone; }

    // NOLINTNEXTLINE(performance-no-int-to-ptr): what iconv_open() returns where it fails
    const iconv_t kNone = reinterpret_cast<iconv_t>(-1);
    std::uint8_t m_charset;
    bool m_wasTried = false;
    iconv_t m_handle = kNone; ///< opened when the first character beyond ASCII comes
};

} // namespace

std::vector<TextRun::Unit> unitsOfBytes(ByteView bytes, std::uint8_t charset)
{
    std::vector<TextRun::Unit> units(bytes.size);
    if (charset == kSymbolCharset) {
        for (std::size_t i = 0; i < bytes.size; ++i)
            units[i].code = kSymbolArea + bytes[i];
        return units;
    }
    Decoder decoder(charset);
    for (std::size_t i = 0; i < bytes.size;) {
        std::size_t used = 1;
        units[i].code = bytes[i] < 0x80 ? bytes[i] : decoder.next(bytes.sub(i), used);
        i += used;
    }
    return units;
}

std::vector<TextRun::Unit> unitsOfUtf16(ByteView bytes)
{
    const Fields fields(bytes);
    std::vector<TextRun::Unit> units(bytes.size / 2);
    for (std::size_t i = 0; i < units.size(); ++i) {
        const char32_t unit = fields.u16(2 * i);
        units[i].code = unit;
        if (unit < 0xD800 || unit >= 0xDC00 || i + 1 == units.size())
            continue;
        const char32_t low = fields.u16(2 * i + 2);
        if (low >= 0xDC00 && low < 0xE000) {
            units[i].code = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
            ++i;
        }
    }
    return units;
}

} // namespace quillrip::emf
