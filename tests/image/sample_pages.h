#pragma once

#include "quillrip/base/page_bitmap.h"
#include "quillrip/image/document_writer.h"
#include "tests/image/decoders.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <random>
#include <string>

namespace quillrip::test {

/// A folder that lives as long as the test.
class ScratchFolder {
public:
    ScratchFolder();
    ~ScratchFolder();
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

    std::string path(const std::string& name) const { return (m_folder / name).string(); }
    const std::filesystem::path& folder() const { return m_folder; }
    /// Everything in it, hidden files too.
    std::size_t entryCount() const;

private:
    std::filesystem::path m_folder;
};

/// What a page shows.
enum class Content {
    Blank, ///< no row was ever marked
    Solid, ///< all ink
    Text, ///< short marks in lines, with white rows and margins between and around
    Noise, ///< every byte random
    Picture, ///< smooth
};

PageBitmap makePage(PixelFormat format, int width, int height, Content content, unsigned seed = 1,
    Resolution resolution = { 300, 300 });
PageBitmap copyOf(const PageBitmap& page);

void writeTextFile(const std::string& path, const std::string& text);
std::string readTextFile(const std::string& path);

/// Success when every pixel is the same; the first that is not is named.
testing::AssertionResult shows(const DecodedImage& image, const PageBitmap& page);

/// Writes the pages as one document; success when the writer reports it.
testing::AssertionResult write(const DocumentOptions& options, const std::vector<const PageBitmap*>& pages);

DocumentOptions optionsFor(const std::string& path, TiffCompression compression = TiffCompression::None);

} // namespace quillrip::test
