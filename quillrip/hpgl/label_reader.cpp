#include "quillrip/hpgl/label_reader.h"

#include "quillrip/hpgl/lexer.h"

namespace quillrip::hpgl {

namespace {

constexpr std::size_t kPart = 16384;

} // namespace

std::string LabelReader::next()
{
    std::string label;
    m_isComplete = true;
    while (label.size() < kPart) {
        const int byte = m_input.peek();
        if (byte < 0)
            return label;
        if (byte == kEscape && standsOnExit())
            return label;
        m_input.get();
        if (byte == m_text.terminator) {
            if (m_text.printsTerminator && byte > ' ')
                label.push_back(static_cast<char>(byte));
            return label;
        }
        label.push_back(static_cast<char>(byte));
    }
    m_isComplete = false;
    return label;
}

void LabelReader::skip()
{
    while (!m_isComplete)
        next();
}

/// Whether an ESC leaves the language although the label's terminator is missing.
bool LabelReader::standsOnExit() const
{
    const ByteView window = m_input.window(16);
    if (startsWithUniversalExit(window))
        return true;
    if (m_text.isTransparent || window.size < 2)
        return false;
    if (window[1] == 'E')
        return true;
    if (window[1] != '%')
        return false;
    std::size_t at = 2;
    while (at < window.size && ((window[at] >= '0' && window[at] <= '9') || window[at] == '-' || window[at] == '+'))
        ++at;
    return at < window.size && window[at] == 'A';
}

} // namespace quillrip::hpgl
