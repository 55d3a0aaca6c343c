// Limit texts as the tester takes them, and the comparison behind the looser-limit question.
#include "LimitText.h"

#include <cmath>

namespace kalvo::specdb {

namespace {

// The factor of a prefix letter in front of the unit.
std::optional<double> PrefixFactor(char prefix)
{
    switch (prefix) {
    case 'M': return 1e6;
    case 'k': return 1e3;
    case 'm': return 1e-3;
    case 'u':
    case '\xE6': return 1e-6; // the tester's micro sign
    default: return std::nullopt;
    }
}

} // namespace

std::optional<LimitBound> ParseLimit(const QByteArray &text)
{
    QByteArray rest = text.trimmed();
    if (rest.isEmpty())
        return std::nullopt;
    LimitBound bound;
    if (rest.startsWith('<') || rest.startsWith('>')) {
        bound.sign = rest[0];
        rest.remove(0, 1);
    }
    if (rest.endsWith(kOhm)) {
        bound.unit = "Ohm";
        rest.chop(1);
    } else if (rest.endsWith('V') || rest.endsWith('A')) {
        bound.unit = rest.right(1);
        rest.chop(1);
    } else {
        return std::nullopt;
    }
    double factor = 1;
    if (!rest.isEmpty() && !(rest.back() >= '0' && rest.back() <= '9') && rest.back() != '.') {
        const auto prefix = PrefixFactor(rest.back());
        if (!prefix)
            return std::nullopt;
        factor = *prefix;
        rest.chop(1);
    }
    bool ok = false;
    const double number = rest.toDouble(&ok);
    if (!ok || !std::isfinite(number) || number < 0 || rest.contains('e') || rest.contains('E'))
        return std::nullopt;
    bound.value = number * factor;
    return bound;
}

bool IsLooser(const QByteArray &text, const QByteArray &reference)
{
    const auto limit = ParseLimit(reference);
    if (!limit)
        return false;
    const auto given = ParseLimit(text);
    if (!given || given->sign != limit->sign || given->unit != limit->unit)
        return true;
    // Compared at the reference's own precision: "<0.50mA" is no looser than "<0.500mA".
    const double tolerance = 1e-9 * std::max(1.0, std::abs(limit->value));
    switch (limit->sign) {
    case '<': return given->value > limit->value + tolerance;
    case '>': return given->value < limit->value - tolerance;
    default: return std::abs(given->value - limit->value) > tolerance;
    }
}

} // namespace kalvo::specdb
