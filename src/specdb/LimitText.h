// Limit texts as the tester takes them (">2.000M" + ohm, "<0.500mA", "0120V"): what they bound,
// and whether one is looser than another.
#pragma once

#include <QByteArray>

#include <optional>

namespace kalvo::specdb {

inline constexpr char kOhm = '\xEA'; // the tester's ohm sign

struct LimitBound {
    char sign = 0;    // '<' an upper limit, '>' a lower one, 0 a value without a sign
    double value = 0; // in the unit's base: ohms, volts or amperes
    QByteArray unit;  // "Ohm", "V" or "A"
};

// The bound a limit text sets; nullopt for an empty text or one that is no limit.
std::optional<LimitBound> ParseLimit(const QByteArray &text);

// Whether `text` lets through what `reference` would stop: a higher upper limit, a lower lower
// limit, an empty or unreadable text where the reference sets one, another sign or unit, or another
// value where the reference has no sign. A reference that sets nothing makes nothing looser.
bool IsLooser(const QByteArray &text, const QByteArray &reference);

} // namespace kalvo::specdb
