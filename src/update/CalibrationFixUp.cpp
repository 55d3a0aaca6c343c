// After a package run on newer firmware: raising calibration values 29 and 50 that are too low.
#include "CalibrationFixUp.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"

#include <charconv>

namespace kalvo::update {

namespace {

constexpr qsizetype kValue29Width = 5;

// The number `text` begins with (blanks, a sign, digits with a decimal point), when there is one.
std::optional<double> LeadingNumber(const QByteArray &text)
{
    qsizetype i = 0;
    while (i < text.size() && (text[i] == ' ' || text[i] == '\t'))
        ++i;
    if (i < text.size() && (text[i] == '-' || text[i] == '+'))
        ++i;
    if (i < text.size() && text[i] == '.')
        ++i;
    if (i >= text.size() || text[i] < '0' || text[i] > '9')
        return std::nullopt;
    return link::NumericValue(text);
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

} // namespace

bool FixUpNeeded(double firmwareVersion)
{
    return static_cast<float>(firmwareVersion) > kFixUpAfterVersion;
}

std::optional<double> Value29(const QByteArray &answer)
{
    const qsizetype colon = answer.indexOf(':');
    const qsizetype comma = answer.indexOf(',');
    if (colon < 0 || comma < colon)
        return std::nullopt;
    return LeadingNumber(answer.mid(comma + 1, kValue29Width));
}

std::optional<double> Value50(const QByteArray &answer)
{
    const qsizetype comma = answer.indexOf(',');
    if (comma < 0)
        return std::nullopt;
    return LeadingNumber(answer.mid(comma + 1));
}

QByteArray ScaledValue29(double b)
{
    const float product = static_cast<float>(b) * kValue29Factor;
    if (product == 0)
        return "0"; // never "-0"
    char text[64];
    // The shortest digits that read back as this very single; fixed, for the tester reads no exponent.
    const auto result = std::to_chars(text, text + sizeof text, product, std::chars_format::fixed);
    return QByteArray(text, result.ptr - text);
}

FixUpResult FixUpCalibration(link::Link &link, link::Prompter &prompter)
{
    FixUpResult result;
    bool refused = false;
    link::OpenServiceSession(link);
    try {
        const double b =
            ReadValue(link, "kal?29", Value29, QStringLiteral("\":\", dann \",\" und eine Zahl dahinter"));
        if (b < kValue29Limit)
            result.changed29 =
                Write(link, "wer!29,0", refused) && Write(link, "wer!29," + ScaledValue29(b), refused);
        const double c = ReadValue(link, "kal?50", Value50, QStringLiteral("\",\" und eine Zahl dahinter"));
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
