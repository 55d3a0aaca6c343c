// Which answers of the virtual tester go wrong, and how.
#include "FaultPlan.h"

#include <QRegularExpression>
#include <array>

namespace kalvo::sim {

namespace {

struct KindEntry {
    FaultKind kind;
    const char *name;
};

constexpr std::array<KindEntry, 12> kKinds{{
    {FaultKind::Silence, "silence"},
    {FaultKind::NoTerminator, "noterminator"},
    {FaultKind::Refuse, "refuse"},
    {FaultKind::RefuseStore, "refusestore"},
    {FaultKind::Garbage, "garbage"},
    {FaultKind::CutOff, "cutoff"},
    {FaultKind::Vanish, "vanish"},
    {FaultKind::TrailingJunk, "trailingjunk"},
    {FaultKind::NoAck, "noack"},
    {FaultKind::NoErase, "noerase"},
    {FaultKind::RammingOnly, "rammingonly"},
    {FaultKind::ResetHalfway, "resethalfway"},
}};

const QString kSyntax = QStringLiteral("KIND[:COMMAND][@N][xCOUNT]");

bool Fail(QString *error, const QString &text)
{
    if (error)
        *error = text;
    return false;
}

} // namespace

bool IsLoaderFault(FaultKind kind)
{
    return kind == FaultKind::NoAck || kind == FaultKind::NoErase || kind == FaultKind::RammingOnly ||
           kind == FaultKind::ResetHalfway;
}

QString FaultPlan::KindName(FaultKind kind)
{
    for (const KindEntry &entry : kKinds) {
        if (entry.kind == kind)
            return QString::fromLatin1(entry.name);
    }
    return {};
}

QStringList FaultPlan::KindNames()
{
    QStringList names;
    for (const KindEntry &entry : kKinds)
        names << QString::fromLatin1(entry.name);
    return names;
}

std::optional<Fault> FaultPlan::Parse(const QString &text, QString *error)
{
    // The command is matched lazily, so that "refuse:dis?x5" is five refusals of "dis?".
    static const QRegularExpression pattern(
        QStringLiteral(R"(^([A-Za-z_-]+)(?::(.*?))?(?:@(\d+))?(?:x(\d+))?$)"),
        QRegularExpression::DotMatchesEverythingOption);
    const auto match = pattern.match(text);
    if (!match.hasMatch()) {
        Fail(error, QStringLiteral("fault \"%1\" is not of the form %2").arg(text, kSyntax));
        return std::nullopt;
    }
    // "trailing-junk", "Trailing_Junk" and "trailingjunk" are one kind.
    QString kindName = match.captured(1).toLower();
    kindName.remove(QLatin1Char('-')).remove(QLatin1Char('_'));
    std::optional<FaultKind> kind;
    for (const KindEntry &entry : kKinds) {
        if (kindName == QLatin1String(entry.name))
            kind = entry.kind;
    }
    if (!kind) {
        Fail(error, QStringLiteral("fault \"%1\": unknown kind \"%2\"; known kinds: %3")
                        .arg(text, match.captured(1), KindNames().join(QStringLiteral(", "))));
        return std::nullopt;
    }
    Fault fault;
    fault.kind = *kind;
    if (match.capturedStart(2) >= 0) {
        if (match.captured(2).isEmpty()) {
            Fail(error, QStringLiteral("fault \"%1\": no command after \":\"").arg(text));
            return std::nullopt;
        }
        fault.command = match.captured(2).toLatin1();
    }
    if (match.capturedStart(3) >= 0) {
        bool ok = false;
        fault.fromExchange = match.captured(3).toInt(&ok);
        if (!ok || fault.fromExchange < 1) {
            Fail(error, QStringLiteral("fault \"%1\": the exchange after \"@\" counts from 1").arg(text));
            return std::nullopt;
        }
    }
    if (match.capturedStart(4) >= 0) {
        bool ok = false;
        fault.count = match.captured(4).toInt(&ok);
        if (!ok || fault.count < 1) {
            Fail(error, QStringLiteral("fault \"%1\": the count after \"x\" must be at least 1").arg(text));
            return std::nullopt;
        }
    }
    return fault;
}

bool FaultPlan::add(const QString &text, QString *error)
{
    const auto fault = Parse(text, error);
    if (!fault)
        return false;
    add(*fault);
    return true;
}

std::optional<FaultKind> FaultPlan::Take(const QByteArray &line, int exchange)
{
    return TakeFirst(line, exchange, false);
}

std::optional<FaultKind> FaultPlan::TakeLoader(const QByteArray &line, int exchange)
{
    return TakeFirst(line, exchange, true);
}

std::optional<FaultKind> FaultPlan::TakeFirst(const QByteArray &line, int exchange, bool loader)
{
    for (Fault &fault : m_faults) {
        if (fault.count == 0 || exchange < fault.fromExchange || IsLoaderFault(fault.kind) != loader)
            continue;
        if (!fault.command.isEmpty() && !line.toLower().startsWith(fault.command.toLower()))
            continue;
        if (fault.count > 0)
            --fault.count;
        return fault.kind;
    }
    return std::nullopt;
}

} // namespace kalvo::sim
