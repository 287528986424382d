// PE: vectors in few bytes.

#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/commands.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/plotter.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace quillrip::hpgl::commands {

namespace {

constexpr double kLargestValue = 2147483647.0;

/// Whether a byte stands for nothing inside PE; line ends are put in freely.
bool isPadding(int byte) { return byte <= 0x20 || byte == 0x7F || (byte >= 0x80 && byte <= 0xA0) || byte == 0xFF; }

/// The numbers of one PE command: least significant digit first, the last digit marked, the sign in the lowest bit.
class EncodedNumbers {
public:
    explicit EncodedNumbers(InputStream& input)
        : m_input(input)
    {
    }

    void useSevenBits() { m_base = 32; }

    /// The next byte that means something, without its parity bit where that has no meaning; -1 at the command's end.
    int peek()
    {
        for (;;) {
            const int byte = m_input.peek();
            if (byte < 0 || byte == kEscape)
                return -1;
            if (!isPadding(byte))
                return m_base == 32 ? byte & 0x7F : byte;
            m_input.get();
        }
    }

    void take() { m_input.get(); }

    /// Nothing when the command ends within the number, or something else begins.
    std::optional<double> number()
    {
        double value = 0;
        double weight = 1;
        for (;;) {
            const int byte = peek();
            if (byte < 0 || byte == ';' || isFlag(byte))
                return std::nullopt;
            take();
            if (byte < 63)
                continue;
            const int lastDigits = m_base == 32 ? 95 : 191;
            const bool isLast = byte >= lastDigits;
            const int digit = isLast ? byte - lastDigits : byte - 63;
            if (digit >= m_base)
                continue; // 127 to 190 are no digits
            value = std::min(value + digit * weight, kLargestValue);
            weight = std::min(weight * m_base, kLargestValue);
            if (isLast)
                break;
        }
        const bool isNegative = std::fmod(value, 2) == 1;
        const double magnitude = std::floor(value / 2);
        return isNegative ? -magnitude : magnitude;
    }

    static bool isFlag(int byte)
    {
        const int low = byte & 0x7F;
        return low == ':' || low == '<' || low == '=' || low == '>' || low == '7';
    }

private:
    InputStream& m_input;
    int m_base = 64;
};

} // namespace

void encodedPolyline(Plotter& plotter, Command& command)
{
    State& state = plotter.state;
    EncodedNumbers numbers(command.input);
    bool isPenUpNext = false;
    bool isAbsoluteNext = false;
    double unit = 1;
    for (;;) {
        const int byte = numbers.peek();
        if (byte < 0)
            break;
        if (byte == ';') {
            numbers.take();
            break;
        }
        if (EncodedNumbers::isFlag(byte)) {
            numbers.take();
            switch (byte & 0x7F) {
            case '<':
                isPenUpNext = true;
                break;
            case '=':
                isAbsoluteNext = true;
                break;
            case '7':
                numbers.useSevenBits();
                break;
            case ':':
                if (const auto pen = numbers.number(); pen && !plotter.polygon.isOpen()) {
                    plotter.linePen.end();
                    plotter.linePen.restartPattern();
                    plotter.pens.select(static_cast<int>(std::clamp(*pen, -1.0, 32767.0)));
                }
                break;
            case '>':
                if (const auto bits = numbers.number())
                    unit = std::ldexp(1.0, -static_cast<int>(std::clamp(*bits, -26.0, 26.0)));
                break;
            }
            continue;
        }
        if (byte < 63) {
            numbers.take();
            continue;
        }
        const auto x = numbers.number();
        const auto y = x ? numbers.number() : std::nullopt;
        if (!y)
            continue;
        const Point pair { *x * unit, *y * unit };
        state.isPenDown = !isPenUpNext;
        plotter.arm.travelToPoint(isAbsoluteNext ? plotter.coordinates.toPlotter(pair)
                                                 : state.pen + plotter.coordinates.vectorToPlotter(pair));
        isPenUpNext = isAbsoluteNext = false;
    }
    state.carriageReturn = state.pen;
}

} // namespace quillrip::hpgl::commands
