#include "quillrip/emf/plus/font_object.h"

#include "quillrip/emf/plus/field_reader.h"
#include "quillrip/emf/utf16.h"

#include <cmath>

namespace quillrip::emf::plus {

namespace {

enum FontStyle : std::uint32_t { kBold = 1, kItalic = 2, kUnderline = 4, kStrikeout = 8 };

enum FormatFlag : std::uint32_t {
    kRightToLeft = 0x0001,
    kVerticalFormat = 0x0002,
    kNoWrap = 0x1000,
    kLineLimit = 0x2000,
    kNoClip = 0x4000,
};

constexpr std::uint32_t kMostTabs = 256;
constexpr std::uint32_t kFirstEllipsis = 3; ///< of the trimming modes

StringAlignment alignmentOf(std::uint32_t number)
{
    return number <= 2 ? static_cast<StringAlignment>(number) : StringAlignment::Near;
}

} // namespace

std::optional<FontObject> readFont(ByteView object)
{
    FieldReader fields(object);
    FontObject font;
    fields.u32(); // version
    font.emSize = std::abs(fields.f32());
    font.unit = unitOf(fields.u32());
    const std::uint32_t style = fields.u32();
    fields.u32(); // reserved
    const std::uint32_t length = fields.u32();
    font.family = toUtf8(fields.text(length));
    font.isBold = style & kBold;
    font.isItalic = style & kItalic;
    font.isUnderlined = style & kUnderline;
    font.isStruckOut = style & kStrikeout;
    return fields.hasFailed() ? std::nullopt : std::optional { font };
}

std::optional<StringFormatObject> readStringFormat(ByteView object)
{
    FieldReader fields(object);
    StringFormatObject format;
    fields.u32(); // version
    const std::uint32_t flags = fields.u32();
    fields.u32(); // language
    format.alignment = alignmentOf(fields.u32());
    format.lineAlignment = alignmentOf(fields.u32());
    fields.u32(); // digit substitution
    fields.u32(); // its language
    format.firstTab = fields.f32();
    const std::uint32_t hotKeys = fields.u32();
    format.leadingMargin = fields.f32();
    format.trailingMargin = fields.f32();
    fields.f32(); // tracking: the room that hinted letters may take up when a string is measured
    format.endsWithEllipsis = fields.u32() >= kFirstEllipsis;
    const std::uint32_t tabs = fields.u32();
    fields.u32(); // character ranges, which only measuring asks for
    if (fields.hasFailed() || tabs > kMostTabs)
        return std::nullopt;
    format.tabs = fields.numbers(tabs);
    format.isRightToLeft = flags & kRightToLeft;
    format.isVertical = flags & kVerticalFormat;
    format.isWrapped = !(flags & kNoWrap);
    format.hasWholeLinesOnly = flags & kLineLimit;
    format.isClipped = !(flags & kNoClip);
    if (hotKeys == 1)
        format.hotKeys = StringFormatObject::HotKeys::Underlined;
    else if (hotKeys == 2)
        format.hotKeys = StringFormatObject::HotKeys::Hidden;
    return fields.hasFailed() ? std::nullopt : std::optional { format };
}

} // namespace quillrip::emf::plus
