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

/// The rest of a PCL command behind its ESC and parameterised character, chained parts and binary data included.
void skipParameterised(InputStream& input, int prefix)
{
    const bool isTransfer = isRasterTransfer(prefix, input.peek());
    // A command that is not ended within a few hundred bytes is none.
    for (int count = 0; count < 512; ++count) {
        bool hasNumber = false;
        double number = 0;
        if (NumberReader::isStart(input.peek()))
            hasNumber = readNumber(input, number);
        const int byte = input.peek();
        if (byte < 0x20 || byte > 0x7E)
            return;
        input.get();
        const bool hasData = byte == 'W' || byte == 'w' || (isTransfer && (byte == 'V' || byte == 'v'));
        if (hasData && hasNumber && number > 0)
            input.skip(static_cast<std::uint64_t>(number));
        if (byte >= '@' && byte <= '^')
            return;
    }
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
    const ByteView window = input.window(16);
    if (startsWithUniversalExit(window))
        return { EscapeSequence::Kind::UniversalExit, 0, 0 };
    EscapeSequence sequence;
    input.get();
    const int second = input.peek();
    if (second < 0x21 || second > 0x7E)
        return sequence;
    if (second == 'E') {
        input.get();
        sequence.kind = EscapeSequence::Kind::Reset;
    } else if (second == '.') {
        input.get();
        if (input.peek() > 0x20) {
            sequence.kind = EscapeSequence::Kind::DeviceControl;
            sequence.control = static_cast<char>(input.get());
            skipDeviceControlOperands(input, sequence.control);
        }
    } else if (second == '%') {
        input.get();
        double number = 0;
        if (NumberReader::isStart(input.peek()))
            readNumber(input, number);
        sequence.value = static_cast<int>(std::clamp(number, -32768.0, 32767.0));
        const int third = input.peek();
        if (third == 'A' || third == 'B') {
            input.get();
            sequence.kind = third == 'A' ? EscapeSequence::Kind::EnterPcl : EscapeSequence::Kind::EnterHpgl;
        } else {
            skipParameterised(input, second);
        }
    } else if (second < '0') {
        input.get();
        skipParameterised(input, second);
    } else {
        input.get();
    }
    return sequence;
}

} // namespace quillrip::hpgl
