// The three adjustable limits: touch current "kuschl_ea", voltage "601_UBEZ", high-voltage time D2.
#include "Limits.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/Prompter.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"

#include <array>

namespace kalvo::config {

namespace {

const std::array<LimitInfo, 3> &Table()
{
    static const std::array<LimitInfo, 3> table{{
        {LimitKind::Kuschl, QStringLiteral("kuschl"), "kuschl_ea", 15, 95, QStringLiteral(" mA"),
         "wer?bgwkuschl_ea"},
        {LimitKind::Ubez, QStringLiteral("Ubez"), "601_UBEZ", 90, 300, QStringLiteral(" V"),
         "wer?bgw601_UBEZ"},
        {LimitKind::Pzhv, QStringLiteral("PZHV"), "UHVZ", 1, 60, QStringLiteral(" s"), "var?D2"},
    }};
    return table;
}

// No limit of the tester has more than four digits; anything beyond is not a value.
constexpr qint64 kLargestLimit = 9999;

int ValueAt(LimitKind kind, const QByteArray &answer, qsizetype from, const QString &expected)
{
    const auto value = link::WholeNumber(answer.mid(from), 0, kLargestLimit);
    if (from < 0 || !value)
        throw link::FormatError::ForAnswer(Limit(kind).readCommand, answer, expected);
    return static_cast<int>(*value);
}

} // namespace

const LimitInfo &Limit(LimitKind kind)
{
    return Table()[static_cast<size_t>(kind)];
}

std::optional<LimitKind> LimitKindFromName(const QString &name)
{
    for (const LimitInfo &info : Table()) {
        if (name.compare(info.menuEntry, Qt::CaseInsensitive) == 0 ||
            name.compare(QString::fromLatin1(info.name), Qt::CaseInsensitive) == 0)
            return info.kind;
    }
    return std::nullopt;
}

bool InRange(LimitKind kind, int value)
{
    return value >= Limit(kind).minimum && value <= Limit(kind).maximum;
}

QByteArray LimitWriteCommand(LimitKind kind, int value)
{
    const QByteArray digits = QByteArray::number(value);
    switch (kind) {
    case LimitKind::Kuschl: return "wer!bgw" + Limit(kind).name + "<0" + digits + ".0 mA";
    case LimitKind::Ubez: return "wer!bgw" + Limit(kind).name + "+" + digits + " V";
    case LimitKind::Pzhv: return "var!D2" + digits;
    }
    return {};
}

int LimitValueFromAnswer(LimitKind kind, const QByteArray &answer)
{
    if (kind == LimitKind::Pzhv) {
        const qsizetype equals = answer.indexOf('=');
        return ValueAt(kind, answer, equals < 0 ? -1 : equals + 1,
                       QStringLiteral("\"=\" und die Sekunden (0 bis %1)").arg(kLargestLimit));
    }
    const qsizetype b = answer.indexOf("BGW");
    return ValueAt(
        kind, answer, b < 0 ? -1 : b + 5,
        QStringLiteral("\"BGW\" und fünf Stellen dahinter den Grenzwert (0 bis %1)").arg(kLargestLimit));
}

QString LimitLabel(LimitKind kind, int value)
{
    return (value >= 0 ? QStringLiteral(" ") : QString()) + QString::number(value) + Limit(kind).unit;
}

int ReadLimit(link::Link &link, LimitKind kind)
{
    return LimitValueFromAnswer(kind, link.Exchange(Limit(kind).readCommand));
}

bool WriteLimit(link::Link &link, link::Prompter &prompter, LimitKind kind, int value)
{
    if (link.Exchange(LimitWriteCommand(kind, value)).contains(".N")) {
        prompter.message(kLimitRefusedText, link::Prompter::Icon::Warning);
        return false;
    }
    return true;
}

bool StoreLimits(link::Link &link, link::Prompter &prompter)
{
    return link::StoreChanges(link, prompter, link::StoreCommand::Configuration);
}

} // namespace kalvo::config
