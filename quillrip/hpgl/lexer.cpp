#include "quillrip/hpgl/lexer.h"

#include "quillrip/hpgl/number_reader.h"

#include <algorithm>
#include <cstring>

namespace quillrip::hpgl {

namespace {

/// False for signs and points without any digit, which are taken nevertheless.
bool readNumber(InputStream& input, double& number)
{
    NumberReader reader;
    while (reader.add(input.peek()))
        input.get();
    number = reader.value();
    return reader.hasDigits();
}

} // namespace

bool isLetter(int byte) { return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z'); }

Lexer::Token Lexer::next(Mnemonic& mnemonic)
{
    for (;;) {
        const int first = m_input.peek();
        if (first < 0)
            return Token::End;
        if (first == kEscape)
            return Token::Escape;
        m_input.get();
        if (!isLetter(first))
            continue;
        int second = m_input.peek();
        while (second == ' ' || second == '\t' || second == '\r' || second == '\n' || second == 0) {
            m_input.get();
            second = m_input.peek();
        }
        if (!isLetter(second))
            continue; // a letter on its own is noise
        m_input.get();
        mnemonic = hpgl::mnemonic(first, second);
        return Token::Mnemonic;
    }
}

bool Lexer::readNumbers(std::vector<double>& numbers, std::size_t atMost)
{
    for (;;) {
        const int byte = m_input.peek();
        if (byte < 0 || byte == kEscape || isLetter(byte))
            return true;
        if (byte == ';') {
            m_input.get();
            return true;
        }
        if (!NumberReader::isStart(byte)) {
            m_input.get();
            continue;
        }
        if (numbers.size() >= atMost)
            return false;
        double number = 0;
        if (readNumber(m_input, number))
            numbers.push_back(number);
    }
}

void Lexer::skipOperands()
{
    for (;;) {
        const int byte = m_input.peek();
        if (byte < 0 || byte == kEscape || isLetter(byte))
            return;
        m_input.get();
        if (byte == ';')
            return;
    }
}

std::string Lexer::readText(std::size_t atMost)
{
    std::string text;
    int byte = m_input.peek();
    while (byte == ' ' || byte == ',' || byte == '\t' || byte == '\r' || byte == '\n') {
        m_input.get();
        byte = m_input.peek();
    }
    const bool isQuoted = byte == '"';
    if (isQuoted)
        m_input.get();
    for (;;) {
        byte = m_input.peek();
        if (byte < 0 || byte == kEscape || (!isQuoted && byte == ';'))
            return text;
        m_input.get();
        if (isQuoted && byte == '"')
            return text;
        if (text.size() < atMost)
            text.push_back(static_cast<char>(byte));
    }
}

namespace {

/// A command that is not ended within a few hundred bytes is none.
constexpr std::size_t kLongestSequence = 512;

/// Takes the PCL command that the input stands on, combined parameters and binary data included; what breaks it is
/// left.
void skipParameterised(InputStream& input)
{
    EscapeReader reader(input.window(kLongestSequence));
    if (!reader.open())
        return;
    while (const auto parameter = reader.next()) {
        if (const std::uint64_t data = dataLength(*parameter)) {
            input.skip(reader.offset() + data);
            reader = EscapeReader(input.window(kLongestSequence));
            if (parameter->isCombined)
                reader.resume(parameter->prefix, parameter->group);
        }
    }
    input.skip(reader.offset());
}

void skipDeviceControlOperands(InputStream& input, char control)
{
    const bool mayHaveOperands = std::strchr("@HIMNPQST", control) != nullptr;
    const ByteView window = input.window(256);
    std::size_t at = 0;
    while (at < window.size && (isDigit(window[at]) || window[at] == ';' || window[at] == ' '))
        ++at;
    if (at < window.size && window[at] == ':' && (mayHaveOperands || at > 0))
        input.skip(at + 1);
    else if (mayHaveOperands)
        input.skip(at);
}

} // namespace

EscapeSequence readEscape(InputStream& input)
{
    const ByteView window = input.window(kLongestSequence);
    if (startsWithUniversalExit(window))
        return { EscapeSequence::Kind::UniversalExit, 0, 0 };
    EscapeSequence sequence;
    const int second = window.size > 1 ? window[1] : -1;
    if (second == '.') {
        input.skip(2);
        if (input.peek() > 0x20) {
            sequence.kind = EscapeSequence::Kind::DeviceControl;
            sequence.control = static_cast<char>(input.get());
            skipDeviceControlOperands(input, sequence.control);
        }
        return sequence;
    }
    if (!isParameterisedCharacter(second)) {
        if (second == 'E')
            sequence.kind = EscapeSequence::Kind::Reset;
        input.skip(isTwoCharacterSequence(second) ? 2 : 1);
        return sequence;
    }
    EscapeReader reader(window);
    reader.open();
    const auto first = reader.next();
    const bool isSwitch = first && second == '%' && first->group == 0 && !first->isCombined
        && (first->letter == 'A' || first->letter == 'B');
    if (!isSwitch) {
        skipParameterised(input);
        return sequence;
    }
    sequence.kind = first->letter == 'A' ? EscapeSequence::Kind::EnterPcl : EscapeSequence::Kind::EnterHpgl;
    sequence.value = static_cast<int>(std::clamp(first->value.number, -32768.0, 32767.0));
    input.skip(reader.offset());
    return sequence;
}

} // namespace quillrip::hpgl
