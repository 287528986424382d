#pragma once

namespace quillrip::hpgl {

/// Takes a number of the language from bytes that come one by one: a sign, digits, a point, digits. There is no
/// exponent, since E begins a mnemonic.
class NumberReader {
public:
    /// Integers of the language reach 2^30 - 1; beyond, nothing is defined.
    static constexpr double kLargest = 1073741823;

    static bool isStart(int byte);
    /// Whether the byte still belongs to the number; it is then counted in.
    bool add(int byte);
    /// False for signs and points alone.
    bool hasDigits() const { return m_hasDigits; }
    double value() const;

private:
    bool m_isNegative = false;
    bool m_hasBegun = false;
    bool m_hasDigits = false;
    bool m_isInFraction = false;
    double m_whole = 0;
    double m_fraction = 0;
    double m_scale = 1; ///< of the fraction's digits
};

} // namespace quillrip::hpgl
