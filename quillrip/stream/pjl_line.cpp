#include "quillrip/stream/pjl_line.h"

#include <algorithm>

namespace quillrip::stream {

namespace {

bool isBlank(char c) { return c == ' ' || c == '\t'; }
char upper(char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; }

std::optional<std::string> valueOf(const std::vector<PjlLine::Option>& options, const char* name)
{
    const auto found = std::find_if(
        options.begin(), options.end(), [name](const PjlLine::Option& option) { return option.name == name; });
    return found == options.end() ? std::nullopt : std::optional<std::string>(found->value);
}

class Scanner {
public:
    explicit Scanner(const std::string& text)
        : m_text(text)
    {
    }

    void skipBlanks()
    {
        while (m_at < m_text.size() && isBlank(m_text[m_at]))
            ++m_at;
    }

    bool atEnd() const { return m_at >= m_text.size(); }

    bool take(char wanted)
    {
        skipBlanks();
        if (atEnd() || m_text[m_at] != wanted)
            return false;
        ++m_at;
        return true;
    }

    std::string word()
    {
        skipBlanks();
        std::string result;
        while (!atEnd() && !isBlank(m_text[m_at]) && m_text[m_at] != '=' && m_text[m_at] != ':')
            result.push_back(upper(m_text[m_at++]));
        return result;
    }

    // Drivers put quotes inside quoted strings, so a string ends only at a quote that a blank or the line's end
    // follows.
    std::string value()
    {
        skipBlanks();
        std::string result;
        if (!atEnd() && m_text[m_at] == '"') {
            ++m_at;
            while (!atEnd()) {
                const char c = m_text[m_at++];
                if (c == '"' && (atEnd() || isBlank(m_text[m_at])))
                    break;
                result.push_back(c);
            }
            return result;
        }
        while (!atEnd() && !isBlank(m_text[m_at]))
            result.push_back(m_text[m_at++]);
        return result;
    }

private:
    const std::string& m_text;
    std::size_t m_at = 0;
};

} // namespace

std::optional<std::string> PjlLine::option(const char* name) const { return valueOf(options, name); }
std::optional<std::string> PjlLine::modifier(const char* name) const { return valueOf(modifiers, name); }

PjlLine parsePjlLine(const std::string& text)
{
    PjlLine line;
    Scanner scanner(text);
    line.command = scanner.word();
    if (line.command == "COMMENT" || line.command == "ECHO")
        return line;
    for (scanner.skipBlanks(); !scanner.atEnd(); scanner.skipBlanks()) {
        PjlLine::Option option;
        option.name = scanner.word();
        if (scanner.take(':')) {
            option.value = scanner.value();
            line.modifiers.push_back(std::move(option));
            continue;
        }
        if (scanner.take('='))
            option.value = scanner.value();
        line.options.push_back(std::move(option));
    }
    return line;
}

std::optional<std::uint64_t> parseWholeNumber(const std::string& text)
{
    if (text.empty() || text.size() > 18)
        return std::nullopt;
    std::uint64_t number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        number = number * 10 + static_cast<std::uint64_t>(c - '0');
    }
    return number;
}

std::optional<double> parseDecimal(const std::string& text)
{
    std::size_t at = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    double number = 0;
    double place = 0;
    std::size_t digits = 0;
    for (; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '.' && place == 0) {
            place = 1;
        } else if (c >= '0' && c <= '9' && digits < 15) {
            ++digits;
            number = number * 10 + (c - '0');
            place *= 10;
        } else {
            return std::nullopt;
        }
    }
    if (digits == 0)
        return std::nullopt;
    number /= place > 0 ? place : 1;
    return text[0] == '-' ? -number : number;
}

} // namespace quillrip::stream
