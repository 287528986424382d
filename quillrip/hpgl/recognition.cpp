#include "quillrip/hpgl/recognition.h"

#include "quillrip/base/escape_sequence.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/mnemonics.h"
#include "quillrip/hpgl/number_reader.h"
#include "quillrip/hpgl/plotter_units.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace quillrip::hpgl {

namespace {

constexpr std::size_t kWindow = 4096;
/// Commands that have to be believable, and how many of them may not be.
constexpr int kCommandsLookedAt = 12;
constexpr int kFailuresAllowed = 1;
/// So few commands must all be believable.
constexpr int kShortPlot = 4;
/// Plotter units: 64 inches, the widest roll that plotters take.
constexpr double kWidestRoll = 64 * kPlotterUnitsPerInch;
/// Plotter units; a little more than the long edge of the largest sheet that desktop printers take.
constexpr double kLargeFormat = 17400;

bool isSpace(int byte) { return byte == ' ' || byte == '\t' || byte == '\r' || byte == '\n' || byte == 0; }

bool isUpper(int byte) { return byte >= 'A' && byte <= 'Z'; }

bool isLower(int byte) { return byte >= 'a' && byte <= 'z'; }

/// Reads commands from the start of the data as a plotter would and judges them.
class Judge {
public:
    Judge(ByteView bytes, std::size_t window)
        : m_bytes(bytes.sub(0, window))
        , m_isCut(bytes.size >= window)
    {
    }

    bool decide()
    {
        if (const auto early = skipPrelude(); early != Verdict::Open)
            return early == Verdict::Plot;
        bool isFirst = true;
        while (m_commands < kCommandsLookedAt) {
            skipSeparators();
            if (m_at >= m_bytes.size || peek() == kEscape)
                break;
            const bool isGood = readCommand(isFirst);
            if (m_wasCut)
                break; // the window ends inside a command: that one does not count
            if (isFirst && !isGood)
                return false;
            isFirst = false;
            ++m_commands;
            if (!isGood && ++m_failures > kFailuresAllowed)
                return false;
        }
        if (m_commands < kShortPlot && m_failures > 0)
            return false;
        return m_commands > 0 && m_hasOperands;
    }

    bool decideWithRaster()
    {
        bool isInVectors = false;
        for (;;) {
            skipSeparators();
            if (m_at >= m_bytes.size)
                return false;
            if (peek() != kEscape) {
                const bool isGood = isInVectors && readCommand(false);
                if (!isInVectors || m_wasCut || (!isGood && ++m_failures > kFailuresAllowed))
                    return false;
                notePage();
            } else if (startsWith("\x1b%-1B")) {
                return true;
            } else if (peek(1) == 'E') {
                if (m_page.hasBegun || m_page.hasSize)
                    return false;
                m_at += 2;
                isInVectors = false;
            } else if (peek(1) == '%') {
                m_at += 2;
                while (isDigit(peek()))
                    ++m_at;
                if (peek() != 'A' && peek() != 'B')
                    return false;
                isInVectors = peek() == 'B';
                ++m_at;
            } else if (!skipRasterSequence()) {
                return false;
            }
            // A coarse raster can be too wide by mistake, and printers cut it; so can one that no roll of paper holds.
            constexpr double kFineDotsPerInch = 150;
            const double width
                = m_dotsPerInch >= kFineDotsPerInch ? m_rasterWidth / m_dotsPerInch * kPlotterUnitsPerInch : 0;
            const bool isWide = width > kLargeFormat && width <= kWidestRoll;
            const bool asksForPage = m_page.hasBegun || m_page.hasSize || isWide;
            if ((asksForPage && m_hasRaster) || (m_page.hasBothEdges && (m_page.hasBegun || m_page.isLarge)))
                return true;
        }
    }

private:
    enum class Verdict { Open, Plot, Other };

    int peek(std::size_t ahead = 0) const { return m_at + ahead < m_bytes.size ? m_bytes[m_at + ahead] : -1; }

    bool startsWith(const char* text) const
    {
        const std::size_t length = std::strlen(text);
        return m_at + length <= m_bytes.size && std::memcmp(m_bytes.data + m_at, text, length) == 0;
    }

    void skipSeparators()
    {
        while (m_at < m_bytes.size && (isSpace(peek()) || peek() == ';'))
            ++m_at;
    }

    /// Measuring instruments begin with control bytes of their interface.
    Verdict skipPrelude()
    {
        for (;;) {
            skipSeparators();
            if (peek() >= 0 && peek() < ' ' && peek() != kEscape) {
                ++m_at;
                continue;
            }
            if (peek() != kEscape)
                return Verdict::Open;
            if (startsWith("\x1b%-1B"))
                return Verdict::Plot;
            if (peek(1) == '.')
                return (peek(2) >= '@' && peek(2) <= 'Z') || peek(2) == '(' || peek(2) == ')' ? Verdict::Plot
                                                                                              : Verdict::Other;
            if (peek(1) != 'E')
                return Verdict::Other;
            m_at += 2;
        }
    }

    /// After a command: whether it asked for a page.
    void notePage()
    {
        const ByteView command = m_bytes.sub(m_commandAt, m_at - m_commandAt);
        if (command.size < 2)
            return;
        const int first = command[0] & ~0x20;
        const int second = command[1] & ~0x20;
        m_page.hasBegun = m_page.hasBegun || (first == 'B' && second == 'P');
        if (first != 'P' || second != 'S')
            return;
        int edges = 0;
        std::size_t at = 2;
        while (at < command.size) {
            NumberReader reader;
            const std::size_t start = at;
            while (at < command.size && reader.add(command[at]))
                ++at;
            edges += reader.hasDigits() ? 1 : 0;
            m_page.isLarge = m_page.isLarge || reader.value() > kLargeFormat;
            at += at == start ? 1 : 0;
        }
        m_page.hasSize = m_page.hasSize || edges > 0;
        m_page.hasBothEdges = m_page.hasBothEdges || edges == 2;
    }

    /// Takes an escape sequence that both PCL and the raster language of plotters have; false for any other.
    bool skipRasterSequence()
    {
        const int prefix = peek(1);
        const int group = peek(2);
        const char* const letters = prefix == '*' && group > 0 && std::strchr("bgilmprtv", group) ? "" // any
            : prefix == '&' && group == 'a'                                                       ? "HNV"
            : prefix == '&' && group == 'p'                                                       ? "CIS"
            : prefix == '&' && group == 'u'                                                       ? "D"
                                                                                                  : nullptr;
        if (!letters)
            return false;
        EscapeReader reader(m_bytes.sub(m_at));
        reader.open();
        bool isEnded = false;
        while (const auto parameter = reader.next()) {
            const char letter = parameter->letter;
            if (!isUpper(letter) || (*letters && !std::strchr(letters, letter)))
                return false;
            const std::uint64_t data = dataLength(*parameter);
            m_hasRaster = m_hasRaster || (group == 'r' && letter == 'A') || (group == 'b' && data > 0);
            if (group == 't' && letter == 'R' && parameter->value.number > 0)
                m_dotsPerInch = parameter->value.number;
            if (group == 'r' && letter == 'S')
                m_rasterWidth = parameter->value.number;
            reader.skip(data);
            isEnded = !parameter->isCombined;
        }
        m_at += reader.offset();
        return isEnded || peek() == kEscape || peek() < 0; // some drivers leave a sequence unfinished
    }

    bool readCommand(bool isFirst)
    {
        m_commandAt = m_at;
        const int first = peek();
        const int second = peek(1);
        const bool isName = (isUpper(first) && isUpper(second)) || (isLower(first) && isLower(second));
        if (!isName) {
            ++m_at;
            return false;
        }
        m_at += 2;
        const MnemonicEntry* const known = findMnemonic(mnemonic(first, second));
        if (!known || (isFirst && !known->mayStartPlot())) {
            std::size_t ignored = 0;
            readNumbers(ignored);
            return false;
        }
        switch (known->form) {
        case Form::Label:
            return readLabel();
        case Form::Terminator:
            return readTerminator();
        case Form::Symbol:
            m_at += m_at < m_bytes.size ? 1 : 0;
            return true;
        case Form::Encoded:
            return readEncoded();
        case Form::Text:
            return readText();
        default:
            break;
        }
        std::size_t count = 0;
        const bool isClean = readNumbers(count);
        m_hasOperands = m_hasOperands || count > 0;
        if (!isClean || count < known->least || (known->most != MnemonicEntry::kAny && count > known->most))
            return false;
        return (known->form != Form::Pairs || count % 2 == 0) && (known->form != Form::Sextuples || count % 6 == 0);
    }

    /// Numbers up to the command's end; false when anything else stands among them.
    bool readNumbers(std::size_t& count)
    {
        bool isClean = true;
        for (;;) {
            const int byte = peek();
            if (byte < 0) {
                m_wasCut = m_isCut;
                return isClean;
            }
            if (byte == ';') {
                ++m_at;
                return isClean;
            }
            if (isUpper(byte) || isLower(byte) || byte == kEscape)
                return isClean;
            if (NumberReader::isStart(byte)) {
                NumberReader reader;
                while (reader.add(peek()))
                    ++m_at;
                isClean = isClean && reader.hasDigits();
                ++count;
                continue;
            }
            if (!isSpace(byte) && byte != ',')
                isClean = false;
            ++m_at;
        }
    }

    bool readLabel()
    {
        while (m_at < m_bytes.size && m_bytes[m_at] != m_terminator)
            ++m_at;
        if (m_at == m_bytes.size) {
            m_wasCut = m_isCut;
            return m_isCut;
        }
        ++m_at;
        return true;
    }

    bool readTerminator()
    {
        const int byte = peek();
        if (byte < 0)
            return false;
        ++m_at;
        m_terminator = byte == ';' ? 3 : static_cast<std::uint8_t>(byte);
        if (byte == ';')
            return true;
        std::size_t count = 0;
        return readNumbers(count) && count <= 1;
    }

    bool readEncoded()
    {
        bool isClean = true;
        while (m_at < m_bytes.size && peek() != ';') {
            if (peek() == kEscape)
                return false;
            const int byte = peek() & 0x7F;
            isClean = isClean && (byte >= 63 || byte <= 0x20 || std::strchr(":<>=7", byte));
            ++m_at;
        }
        m_hasOperands = true;
        if (m_at == m_bytes.size)
            m_wasCut = m_isCut;
        else
            ++m_at;
        return isClean;
    }

    /// Quoted text among numbers, or nothing.
    bool readText()
    {
        std::size_t count = 0;
        for (;;) {
            const bool isClean = readUpToQuote(count);
            if (peek() != '"')
                return isClean;
            ++m_at;
            while (m_at < m_bytes.size && peek() != '"')
                ++m_at;
            if (m_at == m_bytes.size)
                return m_wasCut = m_isCut;
            ++m_at;
        }
    }

    bool readUpToQuote(std::size_t& count)
    {
        while (isSpace(peek()) || peek() == ',' || isDigit(peek())) {
            count += isDigit(peek()) ? 1 : 0;
            ++m_at;
        }
        if (peek() == ';')
            ++m_at;
        return true;
    }

    ByteView m_bytes;
    bool m_isCut;
    bool m_wasCut = false;
    std::size_t m_at = 0;
    std::uint8_t m_terminator = 3;
    int m_commands = 0;
    int m_failures = 0;
    bool m_hasOperands = false;

    std::size_t m_commandAt = 0; ///< of the command read last
    bool m_hasRaster = false;
    double m_rasterWidth = 0; ///< dots
    double m_dotsPerInch = 0; ///< of the raster; 0: not set
    struct {
        bool hasBegun = false; ///< BP
        bool hasSize = false; ///< PS
        bool hasBothEdges = false;
        bool isLarge = false;
    } m_page;
};

} // namespace

bool looksLikePlot(ByteView window) { return Judge(window, kWindow).decide(); }

bool looksLikeRasterPlot(ByteView window) { return Judge(window, SIZE_MAX).decideWithRaster(); }

} // namespace quillrip::hpgl
