#include "font_test_helpers.h"
#include "quillrip/fonts/font_library.h"

#include <gtest/gtest.h>

using namespace quillrip;

TEST(FontNames, PclXlNamesFindTheirFaces)
{
    const struct {
        const char* name;
        const char* face;
    } cases[] = {
        // Sixteen characters, as published.
        { "CG Times        ", "CG Times" },
        { "CG Omega    BdIt", "CG Omega Bold Italic" },
        { "Univers     CdMd", "Univers Condensed Medium" },
        { "Univers   CdBdIt", "Univers Condensed Bold Italic" },
        { "Courier       Bd", "Courier Bold" },
        { "LetterGothic  It", "Letter Gothic Italic" },
        { "Garamond KrsvHlb", "Garamond Kursiv Halbfett" },
        { "TimesNewRmn BdIt", "Times New Roman Bold Italic" },
        { "Helvetica NrBdOb", "Helvetica Narrow Bold Oblique" },
        { "ITCAvantGardDbOb", "ITC Avant Garde Demi Oblique" },
        { "NwCentSchlbk Rmn", "New Century Schoolbook Roman" },
        { "ZapfChanceryMdIt", "ITC Zapf Chancery Medium Italic" },
        { "Symbol          ", "Symbol" },
        { "Wingdings       ", "Wingdings" },
        { "Line Printer  0N", "Line Printer" },
        // Other orders, other spellings, other lengths.
        { "Univers   MdCdIt", "Univers Condensed Medium Italic" },
        { "M Arial", "Arial" },
        { "AntiqueOlv    Bd", "Antique Olive Bold" },
        { "Garmond      Hlb", "Garamond Halbfett" },
        { "CourierBd", "Courier Bold" },
        { "Arial Bold Italic", "Arial Bold Italic" },
        { "Times New Roman Bold", "Times New Roman Bold" },
        { "times roman", "Times Roman" },
        { "SomeCourierThing", "Courier" },
        { "Unheard Of   Bd", "CG Times Bold" },
        { "", "CG Times" },
    };
    const FontLibrary library;
    for (const auto& c : cases)
        EXPECT_EQ(library.selectByName(c.name, 277, {}).face->traits().name, c.face) << c.name;
}

TEST(FontNames, EveryBuiltInFaceIsFoundByItsOwnNameInAnyPadding)
{
    const FontLibrary library;
    for (const auto& face : library.builtInFaces()) {
        const Font font = library.selectByName(face->traits().name, 277, {});
        EXPECT_EQ(font.face->traits().family, face->traits().family) << face->traits().name;
    }
}

TEST(FontNames, UnknownNamesAreReported)
{
    quillrip::test::RecordingSink reports;
    const FontLibrary library;
    library.selectByName("Arial", 277, { &reports, 0 });
    EXPECT_TRUE(reports.diagnostics.empty());
    library.selectByName("Unheard Of", 277, { &reports, 42 });
    ASSERT_TRUE(reports.has("font.name"));
    EXPECT_EQ(reports.diagnostics[0].offset, 42u);
}

TEST(FontNames, UnknownSymbolSetFallsToRoman8)
{
    quillrip::test::RecordingSink reports;
    const FontLibrary library;
    const Font font = library.selectByName("Arial", 9999, { &reports, 0 });
    EXPECT_EQ(font.symbolSet->number(), kRoman8);
    EXPECT_TRUE(reports.has("font.symbol-set"));
    EXPECT_EQ(font.height, 1);
}
