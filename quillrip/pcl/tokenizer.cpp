#include "quillrip/pcl/tokenizer.h"

#include <algorithm>
#include <cstring>

namespace quillrip::pcl {

namespace {

/// Codes that act in every symbol set. The others may be printable, which the current font decides.
bool isControl(int c) { return c == 0 || (c >= 0x07 && c <= 0x0F); }

bool standsOnUniversalExit(InputStream& stream)
{
    return stream.peek() == kEscape && startsWithUniversalExit(stream.window(kUniversalExitLength));
}

} // namespace

int Tokenizer::take()
{
    const int byte = m_stream.get();
    if (m_record && byte >= 0) {
        if (m_record->size() < m_recordLimit)
            m_record->push_back(static_cast<std::uint8_t>(byte));
        else
            m_recordOverflowed = true;
    }
    return byte;
}

Token Tokenizer::next()
{
    // The first parameter of a sequence starts with the ESC, and so does what the record has of it.
    bool isOpening = false;
    while (true) {
        if (m_record && !isOpening)
            m_recordedBeforeToken = m_record->size();
        if (m_inSequence) {
            Token token = parameter();
            if (token.kind != Token::Kind::End)
                return token;
            isOpening = false;
            continue;
        }
        Token token;
        token.offset = m_stream.offset();
        if (standsOnUniversalExit(m_stream)) {
            token.kind = Token::Kind::UniversalExit;
            return token;
        }
        const int byte = take();
        if (byte < 0)
            return token;
        if (byte == kEscape) {
            token = escape();
            if (token.kind != Token::Kind::End)
                return token;
            isOpening = m_inSequence;
            continue;
        }
        token.byte = static_cast<std::uint8_t>(byte);
        token.kind = isControl(byte) ? Token::Kind::Control : Token::Kind::Text;
        return token;
    }
}

// Called after the ESC. An End token means: nothing came of it, go on.
Token Tokenizer::escape()
{
    Token token;
    token.offset = m_stream.offset() - 1;
    const int byte = m_stream.peek();
    if (isTwoCharacterSequence(byte)) {
        take();
        token.kind = Token::Kind::TwoCharacter;
        token.byte = static_cast<std::uint8_t>(byte);
    } else if (isParameterisedCharacter(byte)) {
        take();
        m_prefix = static_cast<char>(byte);
        m_group = 0;
        if (isGroupCharacter(m_stream.peek()))
            m_group = static_cast<char>(take());
        m_inSequence = true;
        m_isFirstParameter = true;
        m_sequenceStart = token.offset;
    }
    // Anything else: the ESC is dropped, and the byte is taken as what it is.
    return token;
}

Token Tokenizer::parameter()
{
    Token token;
    token.offset = m_isFirstParameter ? m_sequenceStart : m_stream.offset();
    m_isFirstParameter = false;
    token.prefix = m_prefix;
    token.group = m_group;
    token.value = readValue();
    const int byte = m_stream.peek();
    if (isCombiningCharacter(byte) || isTerminationCharacter(byte)) {
        take();
        token.kind = Token::Kind::Command;
        token.chained = isCombiningCharacter(byte);
        token.terminator = static_cast<char>(token.chained ? byte - 0x20 : byte);
        m_inSequence = token.chained;
        return token;
    }
    // Another ESC, a control code or a stray byte ends the sequence; the byte then means what it means in text.
    m_inSequence = false;
    return token;
}

Value Tokenizer::readValue()
{
    EscapeValueReader reader;
    while (reader.add(m_stream.peek()))
        take();
    return reader.value();
}

std::uint64_t Tokenizer::takeData(std::uint64_t count, std::vector<std::uint8_t>& data, std::size_t keep)
{
    // Grown as the bytes arrive: a count from the stream is no reason yet to allocate.
    constexpr std::uint64_t kStep = std::uint64_t { 256 } * 1024;
    std::uint64_t taken = 0;
    const std::uint64_t wanted = std::min<std::uint64_t>(count, keep);
    while (taken < wanted) {
        const auto step = static_cast<std::size_t>(std::min(kStep, wanted - taken));
        const std::size_t start = data.size();
        data.resize(start + step);
        const std::size_t got = m_stream.read(data.data() + start, step);
        data.resize(start + got);
        taken += got;
        if (m_record) {
            const std::size_t room = m_recordLimit - std::min(m_recordLimit, m_record->size());
            const auto from = data.begin() + static_cast<std::ptrdiff_t>(start);
            m_record->insert(m_record->end(), from, from + static_cast<std::ptrdiff_t>(std::min(got, room)));
            m_recordOverflowed = m_recordOverflowed || got > room;
        }
        if (got < step)
            return taken;
    }
    return taken + (count > wanted ? skipData(count - wanted) : 0);
}

std::uint64_t Tokenizer::skipData(std::uint64_t count)
{
    if (!m_record)
        return m_stream.skip(count);
    std::uint64_t taken = 0;
    while (taken < count && take() >= 0)
        ++taken;
    return taken;
}

bool Tokenizer::resumeIfContinued(char prefix, char group, const char* terminators)
{
    const ByteView ahead = m_stream.window(8);
    std::size_t digits = 0;
    while (digits < ahead.size && isDigit(ahead[digits]))
        ++digits;
    const auto isOneOf = [&](std::size_t at) { return ahead[at] != 0 && std::strchr(terminators, ahead[at]); };
    if (digits == ahead.size || !isOneOf(digits))
        return false;
    // A count of zero may be left out; then what follows must go on in the same way, or it is a word of text.
    if (digits == 0 && (ahead.size < 2 || !(isDigit(ahead[1]) || isOneOf(1) || ahead[1] == kEscape)))
        return false;
    m_inSequence = true;
    m_prefix = prefix;
    m_group = group;
    return true;
}

void Tokenizer::startRecording(std::vector<std::uint8_t>& record, std::size_t limit)
{
    m_record = &record;
    m_recordLimit = limit;
    m_recordOverflowed = false;
    if (m_inSequence) {
        record.push_back(kEscape);
        record.push_back(static_cast<std::uint8_t>(m_prefix));
        if (m_group)
            record.push_back(static_cast<std::uint8_t>(m_group));
    }
    m_recordedBeforeToken = record.size();
}

void Tokenizer::dropTokenFromRecord()
{
    if (m_record && m_record->size() > m_recordedBeforeToken)
        m_record->resize(m_recordedBeforeToken);
}

} // namespace quillrip::pcl
