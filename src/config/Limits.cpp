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

link::FormatError AnswerError(LimitKind kind, const QString &expected)
{
    return link::FormatError(
        QStringLiteral("Antwort auf %1").arg(QString::fromLatin1(Limit(kind).readCommand)), 0, expected);
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
        if (equals < 0)
            throw AnswerError(kind, QStringLiteral("\"=\" und die Sekunden"));
        return static_cast<int>(link::NumericValue(answer.mid(equals + 1)));
    }
    const qsizetype b = answer.indexOf("BGW");
    if (b < 0)
        throw AnswerError(kind, QStringLiteral("\"BGW\" und den Grenzwert"));
    return static_cast<int>(link::NumericValue(answer.mid(b + 5)));
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
