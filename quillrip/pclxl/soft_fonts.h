#pragma once

#include "quillrip/fonts/font_library.h"
#include "quillrip/fonts/soft/soft_font.h"
#include "quillrip/pclxl/status.h"
#include "quillrip/pclxl/tag_reader.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace quillrip::pclxl {

/// The fonts that a session brings along under names, the header that is being read, and the font that is getting
/// characters.
class SoftFonts {
public:
    explicit SoftFonts(std::size_t maxBytes)
        : m_maxBytes(maxBytes)
        , m_store(maxBytes)
    {
    }

    /// Trailing blanks do not count when the name as it stands is not there. Null when there is none.
    std::shared_ptr<SoftFont> find(const std::string& name) const;
    /// Null when there is none; else what was removed.
    std::shared_ptr<SoftFont> remove(const std::string& name);

    void beginHeader(const std::string& name);
    /// The next `length` bytes of the header, which may be cut anywhere. MissingData, InsufficientMemory.
    Status appendHeader(EmbeddedData& data, std::size_t length);
    /// `isReplaced` tells whether the name had a font before. BadFontData, InsufficientMemory.
    Status endHeader(const Reporter& reporter, bool& isReplaced);

    /// False when there is no such font.
    [[nodiscard]] bool beginCharacters(const std::string& name);
    /// FontUndefined, MissingData, IllegalCharacterData, InsufficientMemory.
    Status addCharacter(std::uint16_t code, EmbeddedData& data, std::size_t length, const Reporter& reporter);

    void endSession();

private:
    const std::size_t m_maxBytes;
    SoftFontStore m_store;
    std::string m_definedName;
    std::vector<std::uint8_t> m_header;
};

} // namespace quillrip::pclxl
