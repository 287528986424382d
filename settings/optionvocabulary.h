#pragma once

#include <QString>

#include <array>
#include <cstddef>

// The texts of the conversion options, in the order of the indices that the settings file stores. The settings
// dialog and the conversion side each map them in their own way; the tables are what both have in common.
namespace vocabulary {

// Output formats: the extension is also what the dialog shows.
inline constexpr std::array<const char*, 5> kFormats { ".jpg", ".bmp", ".pcx", ".png", ".tif" };

// Colour depths as the dialog shows them.
inline constexpr std::array<const char*, 3> kBitCounts { "1 Bit", "8 Bits", "24 Bits" };

// Bits per pixel, as the backend is told.
inline constexpr std::array<const char*, 3> kBitCountArguments { "1", "8", "24" };

// TIFF compression methods, short and as the dialog shows them.
inline constexpr std::array<const char*, 8> kCompressShortNames {
    "none",
    "packbits",
    "lzw:1",
    "lzw:2",
    "g3:1d:fill",
    "g3:2d:fill",
    "g4",
    "zip",
};
inline constexpr std::array<const char*, 8> kCompressFullNames {
    "None",
    "PackBits",
    "Lempel-Ziv-Welch-1",
    "Lempel-Ziv-Welch-2",
    "CCITT Group 3 (1-D)",
    "CCITT Group 3 (2-D)",
    "CCITT Group 4",
    "ZIP",
};

// Fax kinds as the dialog shows them.
inline constexpr std::array<const char*, 3> kFaxKinds {
    "NOT Faxable TIFF",
    "Faxable TIFF Class F (DPI: 204x98)",
    "Faxable TIFF Class F (DPI: 204x196)",
};

// The position of a text in a table, compared exactly; -1 when it is not there.
template <std::size_t N> int IndexOf(const std::array<const char*, N>& table, const QString& strText)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (strText == QLatin1String(table[i]))
            return static_cast<int>(i);
    }
    return -1;
}

// The table position that a stored index text names: "0", "1" ... exactly, so that "01" and " 1" name nothing (-1).
template <std::size_t N> int PositionOf(const std::array<const char*, N>& /*table*/, const QString& strIndex)
{
    for (std::size_t i = 0; i < N; ++i) {
        if (strIndex == QString::number(i))
            return static_cast<int>(i);
    }
    return -1;
}

// The text at a position that IndexOf or PositionOf gave, or the fallback for -1.
template <std::size_t N> QString TextAt(const std::array<const char*, N>& table, int iPosition, const char* chFallback)
{
    return QLatin1String(iPosition < 0 ? chFallback : table[static_cast<std::size_t>(iPosition)]);
}

} // namespace vocabulary
