#include "quillrip/image/document_options.h"

#include <algorithm>
#include <array>
#include <utility>

namespace quillrip {

namespace {

/// Where the extension starts, at its dot; the path's length when there is none. A name that is all extension
/// (".png" in a folder) counts as one, as its type is known too.
std::size_t extensionStart(const std::string& path)
{
    const std::size_t name = path.find_last_of('/') + 1; // npos + 1 is 0
    const std::size_t dot = path.find_last_of('.');
    return dot == std::string::npos || dot < name ? path.size() : dot;
}

bool isCcitt(TiffCompression compression)
{
    return compression == TiffCompression::CcittG3OneD || compression == TiffCompression::CcittG3TwoD
        || compression == TiffCompression::CcittG4;
}

} // namespace

std::optional<FileType> fileTypeOfPath(const std::string& path)
{
    static constexpr std::array<std::pair<const char*, FileType>, 7> kExtensions { {
        { ".bmp", FileType::Bmp },
        { ".png", FileType::Png },
        { ".jpg", FileType::Jpeg },
        { ".jpeg", FileType::Jpeg },
        { ".pcx", FileType::Pcx },
        { ".tif", FileType::Tiff },
        { ".tiff", FileType::Tiff },
    } };
    std::string extension = path.substr(extensionStart(path));
    std::transform(extension.begin(), extension.end(), extension.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    for (const auto& [name, type] : kExtensions)
        if (extension == name)
            return type;
    return std::nullopt;
}

std::string pagePath(const DocumentOptions& options, int number)
{
    if (number <= 1 || holdsSeveralPages(options.type))
        return options.path;
    std::string digits = std::to_string(number);
    if (digits.size() < 4)
        digits.insert(0, 4 - digits.size(), '0');
    std::string path = options.path;
    return path.insert(extensionStart(path), "_p" + digits);
}

std::string reasonAgainst(const DocumentOptions& options, PixelFormat format)
{
    if (options.type != FileType::Tiff || format == PixelFormat::Bilevel)
        return {};
    if (options.fax)
        return "a fax file holds black and white pages only";
    if (isCcitt(options.compression))
        return "CCITT compression is for black and white pages (1 bit) only";
    return {};
}

} // namespace quillrip
