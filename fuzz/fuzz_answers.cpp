// Every function that takes a single tester answer apart, on the same answer.
// Input: the answer, NUL, a start mark, NUL, an end mark (the marks only for FieldBetween).
#include "FuzzFiles.h"

#include "config/Limits.h"
#include "config/Variables.h"
#include "link/DisplayFilter.h"
#include "link/Errors.h"
#include "link/Identification.h"
#include "link/Registers.h"
#include "link/TextRules.h"
#include "link/VersionDate.h"
#include "shell/ServiceTerminal.h"

#include <limits>

using namespace kalvo;

namespace {

void Numbers(const QByteArray &answer)
{
    link::NumericValue(answer);
    constexpr qint64 kLowest = std::numeric_limits<qint64>::min();
    constexpr qint64 kHighest = std::numeric_limits<qint64>::max();
    const std::pair<qint64, qint64> ranges[] = {{kLowest, kHighest}, {0, 255}, {-1, 1}, {1, 60}};
    for (const auto &[low, high] : ranges) {
        const auto value = link::WholeNumber(answer, low, high);
        fuzz::Expect(!value || (*value >= low && *value <= high), "a whole number lies in its range");
    }
}

void Registers(const QByteArray &answer)
{
    const QByteArray value = link::ValueBeforeYes(answer);
    fuzz::Expect(value.size() <= 2, "a register value is at most two characters");
    link::FlagsToHex(link::HexToFlags(value));
    link::HexToFlags(answer);
    link::BinaryGroups groups;
    link::HexToBinary(answer, groups);
    link::HexToBinary(value, groups);
    link::LanguageCodeFromAnswer(answer);

    const QByteArray afterEquals = config::ValueAfterEquals(answer);
    fuzz::Expect(afterEquals.size() <= 2, "a variable value is at most two characters");
    link::NumericValue("&H" + afterEquals);
}

void Limits(const QByteArray &answer)
{
    for (const auto kind : {config::LimitKind::Kuschl, config::LimitKind::Ubez, config::LimitKind::Pzhv}) {
        try {
            config::LimitLabel(kind, config::LimitValueFromAnswer(kind, answer));
        } catch (const link::KalvoError &) {
            // No mark to read the value behind.
        }
    }
}

void VersionFields(const QByteArray &answer)
{
    for (const QByteArray &field : link::SplitFields(answer)) {
        const auto date = link::ParseVersionDate(QString::fromLatin1(field));
        fuzz::Expect(!date || date->isValid(), "a version date read is a valid date");
    }
}

void Text(const QByteArray &answer)
{
    link::StripControlChars(answer);
    link::EncodeTesterText(link::ConvertDisplayText(answer));
    link::EncodeTesterText(link::DecodeTesterText(answer));
    const QString escaped = link::EscapeBytes(answer);
    for (const QChar ch : escaped)
        fuzz::Expect(ch.unicode() >= 32 && ch.unicode() < 127, "escaped bytes are printable ASCII");
    const link::DisplayUpdate update = link::FilterDisplayStream(answer);
    for (const QChar ch : update.text)
        fuzz::Expect(ch.unicode() >= 32 || ch == QLatin1Char('\r') || ch == QLatin1Char('\n'),
                     "the display shows no control bytes but line ends");
    shell::TraceAsText(answer);
    shell::TraceAsCodes(answer);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes = fuzz::InputBytes(data, size);
    const QList<QByteArray> parts = fuzz::SplitParts(bytes, 3);
    const QByteArray &answer = parts[0];

    Numbers(answer);
    Registers(answer);
    Limits(answer);
    VersionFields(answer);
    Text(answer);
    try {
        const QByteArray field = link::FieldBetween(answer, parts[1], parts[2]);
        fuzz::Expect(field.size() <= answer.size(), "a field lies inside its answer");
    } catch (const link::KalvoError &) {
        // The end mark is missing or stands before the start.
    }
    return 0;
}
