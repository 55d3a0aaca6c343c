// After a package run on newer firmware: raising calibration values 29 and 50 that are too low.
#include "CalibrationFixUp.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace kalvo::update {

namespace {

constexpr qsizetype kValue29Width = 5;
// The most significant digits the number-to-text conversion writes.
constexpr int kSignificantDigits = 15;

bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

// Digits with at most one decimal point, at least one digit: no sign, no exponent, no prefix.
bool IsPlainNumber(const QByteArray &text)
{
    bool point = false, digit = false;
    for (char c : text) {
        if (c == '.' && !point)
            point = true;
        else if (IsDigit(c))
            digit = true;
        else
            return false;
    }
    return digit;
}

// The value text of the answer to "kal?" + `entry` by the rule of Value29 and Value50; empty when
// the answer does not hold one.
QByteArray CalibrationValueText(const QByteArray &answer, int entry)
{
    QByteArray payload = answer.endsWith(link::kDC1) ? answer.chopped(1) : answer;
    while (payload.endsWith('\r') || payload.endsWith('\n'))
        payload.chop(1);
    const qsizetype colon = payload.indexOf(':');
    const qsizetype comma = payload.indexOf(',');
    if (colon < 0 || comma < colon || !payload.endsWith(".Y"))
        return {};
    // The tester names the entry it answers for in front of the ":".
    const QByteArray named = payload.left(colon).trimmed();
    const QByteArray number = QByteArray::number(entry);
    if (!named.endsWith(number) ||
        (named.size() > number.size() && IsDigit(named[named.size() - number.size() - 1])))
        return {};
    const QByteArray value = payload.mid(comma + 1, payload.size() - 2 - comma - 1).trimmed();
    return IsPlainNumber(value) ? value : QByteArray();
}

// Sends a write of the fix-up; false (counted as a refusal) unless the tester says ".Y".
bool Write(link::Link &link, const QByteArray &command, bool &refused)
{
    const bool ok = link::SendSetting(link, command);
    refused = refused || !ok;
    return ok;
}

// The value `parse` finds in the answer to `command`; a FormatError naming both when there is none.
double ReadValue(link::Link &link, const QByteArray &command,
                 std::optional<double> (*parse)(const QByteArray &), const QString &expected)
{
    const QByteArray answer = link.Exchange(command);
    const auto value = parse(answer);
    if (!value)
        throw link::FormatError::ForAnswer(command, answer, expected);
    return *value;
}

QString ExpectedValue(int entry)
{
    return QStringLiteral("\"%1:\", dann \",\", eine Zahl ohne Vorzeichen und \".Y\" am Ende").arg(entry);
}

} // namespace

bool FixUpNeeded(double firmwareVersion)
{
    return static_cast<float>(firmwareVersion) > kFixUpAfterVersion;
}

std::optional<double> Value29(const QByteArray &answer)
{
    const QByteArray value = CalibrationValueText(answer, 29);
    if (value.isEmpty())
        return std::nullopt;
    return link::NumericValue(value.left(kValue29Width));
}

std::optional<double> Value50(const QByteArray &answer)
{
    const QByteArray value = CalibrationValueText(answer, 50);
    if (value.isEmpty())
        return std::nullopt;
    return link::NumericValue(value);
}

QByteArray ScaledValue29(double b)
{
    const double product = b * kValue29Factor;
    if (product == 0 || !std::isfinite(product))
        return "0"; // never "-0"
    // Fixed, for the tester reads no exponent, with as many decimals as 15 significant digits leave.
    const int magnitude = static_cast<int>(std::floor(std::log10(std::fabs(product))));
    const int decimals = std::clamp(kSignificantDigits - 1 - magnitude, 0, 2 * kSignificantDigits);
    char text[128];
    const auto result = std::to_chars(text, text + sizeof text, product, std::chars_format::fixed, decimals);
    QByteArray digits(text, result.ptr - text);
    if (digits.contains('.')) {
        while (digits.endsWith('0'))
            digits.chop(1);
        if (digits.endsWith('.'))
            digits.chop(1);
    }
    return digits == "-0" ? QByteArray("0") : digits;
}

FixUpResult FixUpCalibration(link::Link &link, link::Prompter &prompter)
{
    FixUpResult result;
    bool refused = false;
    link::OpenServiceSession(link);
    try {
        const double b = ReadValue(link, "kal?29", Value29, ExpectedValue(29));
        if (b < kValue29Limit)
            result.changed29 =
                Write(link, "wer!29,0", refused) && Write(link, "wer!29," + ScaledValue29(b), refused);
        const double c = ReadValue(link, "kal?50", Value50, ExpectedValue(50));
        if (c < kValue50Limit)
            result.changed50 = Write(link, "wer!50,1204", refused);
    } catch (const link::FormatError &) {
        // Leave configuration mode without storing anything.
        link.Exchange("kal!aus");
        throw;
    }
    if (refused)
        prompter.message(link::kCalibrationNotStoredText, link::Prompter::Icon::Warning);
    else if (result.changed29 || result.changed50)
        result.stored = link::StoreChanges(link, prompter, link::StoreCommand::Calibration);
    link.Exchange("kal!aus");
    return result;
}

} // namespace kalvo::update
