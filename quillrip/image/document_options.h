#pragma once

#include "quillrip/base/page_bitmap.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quillrip {

enum class FileType { Bmp, Png, Jpeg, Pcx, Tiff };

/// The type that a path's extension names, in any case: .bmp .png .jpg .jpeg .pcx .tif .tiff.
std::optional<FileType> fileTypeOfPath(const std::string& path);

/// In the order of the command line's numbers 0 to 7.
enum class TiffCompression {
    None,
    PackBits,
    Lzw,
    LzwPredictor, ///< horizontal differences before LZW; bilevel pages get plain LZW
    CcittG3OneD, ///< T.4 one-dimensional, fill bits before each EOL; bilevel pages only, as the next two
    CcittG3TwoD, ///< T.4 two-dimensional, fill bits before each EOL
    CcittG4, ///< T.6
    Deflate,
};

struct DocumentOptions {
    std::string path; ///< the file, or the first of them
    FileType type = FileType::Png;
    TiffCompression compression = TiffCompression::None; ///< without effect on other types
    /// A TIFF of class F (RFC 2306, profile F): bilevel pages, cropped or padded with white on the right to 1728
    /// pixels, Group 3 one-dimensional whatever `compression` says. Without effect on other types.
    bool fax = false;
    /// A TIFF that can grow above this many bytes becomes a BigTIFF, whose offsets have 64 bits. Less only to test
    /// that.
    std::uint64_t mostTiffBytes = UINT32_MAX;
    int jpegQuality = 90; ///< 1 to 100
    /// What commit() has written is on the disk when it returns. Without it a crash of the machine soon after can lose
    /// new files, but no former one that they take the place of.
    bool isDurable = false;
    unsigned threads = 0; ///< that encode; 0 = as many as the machine has cores, four at most
};

/// True when one file of the type holds all pages.
constexpr bool holdsSeveralPages(FileType type) { return type == FileType::Tiff; }

/// The file that page `number` (from 1) goes to: all into one for TIFF, else `path` for the first and the stem with
/// _p0002, _p0003 ... before the extension for the others.
std::string pagePath(const DocumentOptions& options, int number);

/// Why such a document cannot hold pages of this format, as a sentence without full stop; empty when it can. A size
/// that the file type cannot hold is found out when the page is added.
std::string reasonAgainst(const DocumentOptions& options, PixelFormat format);

} // namespace quillrip
