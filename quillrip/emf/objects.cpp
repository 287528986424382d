#include "quillrip/emf/objects.h"

namespace quillrip::emf {

namespace {

constexpr std::uint32_t kMostSlots = 65536; // the header counts them in 16 bits

Brush solidBrush(std::uint32_t color)
{
    Brush brush;
    brush.color = color;
    return brush;
}

Brush hollowBrush()
{
    Brush brush;
    brush.style = Brush::Style::Null;
    return brush;
}

LogicalPen hairline(std::uint32_t color)
{
    LogicalPen pen;
    pen.brush.color = color;
    return pen;
}

LogicalPen nullPen()
{
    LogicalPen pen;
    pen.style = LogicalPen::Style::Null;
    return pen;
}

LogicalFont stockFont(const char* face, std::int32_t height, std::int32_t weight, std::uint8_t pitchAndFamily)
{
    LogicalFont font;
    font.height = height;
    font.isSizeKnown = false;
    font.face = face;
    font.weight = weight;
    font.pitchAndFamily = pitchAndFamily;
    return font;
}

Palette defaultPalette()
{
    return { { { 0, 0, 0 }, { 128, 0, 0 }, { 0, 128, 0 }, { 128, 128, 0 }, { 0, 0, 128 }, { 128, 0, 128 },
        { 0, 128, 128 }, { 192, 192, 192 }, { 192, 220, 192 }, { 166, 202, 240 }, { 255, 251, 240 }, { 160, 160, 164 },
        { 128, 128, 128 }, { 255, 0, 0 }, { 0, 255, 0 }, { 255, 255, 0 }, { 0, 0, 255 }, { 255, 0, 255 },
        { 0, 255, 255 }, { 255, 255, 255 } } };
}

std::shared_ptr<const Object> stockObject(std::uint32_t number, std::int32_t fontHeight)
{
    constexpr std::uint8_t kFixed = 0x31;
    constexpr std::uint8_t kSans = 0x22;
    constexpr std::int32_t kNormal = 400;
    constexpr std::int32_t kBold = 700;
    const auto make = [](auto object) { return std::make_shared<const Object>(std::move(object)); };
    switch (number) {
    case 0x00: // WHITE_BRUSH
    case 0x12: // DC_BRUSH
        return make(solidBrush(0xFFFFFF));
    case 0x01: // LTGRAY_BRUSH
        return make(solidBrush(0xC0C0C0));
    case 0x02: // GRAY_BRUSH
        return make(solidBrush(0x808080));
    case 0x03: // DKGRAY_BRUSH
        return make(solidBrush(0x404040));
    case 0x04: // BLACK_BRUSH
        return make(solidBrush(0));
    case 0x05: // NULL_BRUSH
        return make(hollowBrush());
    case 0x06: // WHITE_PEN
        return make(hairline(0xFFFFFF));
    case 0x07: // BLACK_PEN
    case 0x13: // DC_PEN
        return make(hairline(0));
    case 0x08: // NULL_PEN
        return make(nullPen());
    case 0x0A: // OEM_FIXED_FONT
    case 0x0B: // ANSI_FIXED_FONT
    case 0x10: // SYSTEM_FIXED_FONT
        return make(stockFont("Courier New", fontHeight, kNormal, kFixed));
    case 0x0D: // SYSTEM_FONT
        return make(stockFont("Arial", fontHeight, kBold, kSans));
    case 0x0C: // ANSI_VAR_FONT
    case 0x0E: // DEVICE_DEFAULT_FONT
        return make(stockFont("Arial", fontHeight, kNormal, kSans));
    case 0x11: // DEFAULT_GUI_FONT, 8 points
        return make(stockFont("Arial", fontHeight * 2 / 3, kNormal, kSans));
    case 0x0F: // DEFAULT_PALETTE
        return make(defaultPalette());
    default:
        return nullptr;
    }
}

std::size_t patternBytesOf(const Object& object)
{
    const Brush* brush = std::get_if<Brush>(&object);
    if (const LogicalPen* const pen = std::get_if<LogicalPen>(&object))
        brush = &pen->brush;
    return brush && brush->pattern ? brush->pattern->pixels.bytes.size() : 0;
}

} // namespace

ObjectTable::ObjectTable(std::int32_t stockFontHeight)
    : m_stockFontHeight(stockFontHeight)
{
}

bool ObjectTable::put(std::uint32_t handle, Object object, std::size_t patternBytes)
{
    if (handle == 0 || handle >= kMostSlots)
        return false;
    remove(handle);
    if (m_patternBytes + patternBytesOf(object) > patternBytes)
        return false;
    m_patternBytes += patternBytesOf(object);
    if (handle >= m_slots.size())
        m_slots.resize(handle + std::size_t { 1 });
    m_slots[handle] = std::make_shared<Object>(std::move(object));
    return true;
}

void ObjectTable::remove(std::uint32_t handle)
{
    if (handle >= m_slots.size() || !m_slots[handle])
        return;
    m_patternBytes -= patternBytesOf(*m_slots[handle]);
    m_slots[handle] = nullptr;
}

std::shared_ptr<const Object> ObjectTable::find(std::uint32_t handle) const
{
    if ((handle & kStockObject) != 0)
        return stockObject(handle & ~kStockObject, m_stockFontHeight);
    return handle < m_slots.size() ? m_slots[handle] : nullptr;
}

Palette* ObjectTable::palette(std::uint32_t handle)
{
    return handle < m_slots.size() && m_slots[handle] ? std::get_if<Palette>(m_slots[handle].get()) : nullptr;
}

} // namespace quillrip::emf
