// Comparing two calibration backups: which entries drifted, and by how much.
#include "CalibrationDiff.h"

#include "Calibration.h"
#include "link/TextRules.h"

#include <QMap>
#include <QRegularExpression>
#include <cmath>

namespace kalvo::config {

namespace {

QMap<int, CalibrationEntry> ByNumber(const QString &path)
{
    QMap<int, CalibrationEntry> entries;
    for (const CalibrationEntry &entry : ReadCalibrationFile(path, RestoreSource::MainForm))
        entries.insert(static_cast<int>(link::NumericValue(entry.number)), entry);
    return entries;
}

bool IsNumber(const QByteArray &text)
{
    static const QRegularExpression number(QStringLiteral(R"(^\s*[-+]?\d+(\.\d*)?\s*$)"));
    return number.match(QString::fromLatin1(text)).hasMatch();
}

std::optional<double> Percent(const QByteArray &before, const QByteArray &after)
{
    if (!IsNumber(before) || !IsNumber(after))
        return std::nullopt;
    const double old = link::NumericValue(before);
    if (old == 0)
        return std::nullopt;
    return (link::NumericValue(after) - old) / std::fabs(old) * 100.0;
}

} // namespace

QList<CalibrationDifference> DiffCalibration(const QString &before, const QString &after)
{
    const QMap<int, CalibrationEntry> older = ByNumber(before);
    const QMap<int, CalibrationEntry> newer = ByNumber(after);
    QList<int> numbers = older.keys();
    for (int n : newer.keys()) {
        if (!older.contains(n))
            numbers << n;
    }
    std::sort(numbers.begin(), numbers.end());
    QList<CalibrationDifference> differences;
    for (int n : numbers) {
        CalibrationDifference d;
        d.entry = n;
        const bool inOlder = older.contains(n), inNewer = newer.contains(n);
        if (inOlder) {
            d.before[0] = older[n].first;
            d.before[1] = older[n].second;
        }
        if (inNewer) {
            d.after[0] = newer[n].first;
            d.after[1] = newer[n].second;
        }
        for (int v = 0; v < 2; ++v) {
            d.changed[v] = inOlder != inNewer || d.before[v].trimmed() != d.after[v].trimmed();
            if (d.changed[v] && inOlder && inNewer)
                d.percent[v] = Percent(d.before[v], d.after[v]);
        }
        if (d.changed[0] || d.changed[1])
            differences << d;
    }
    return differences;
}

QString DescribeDifference(const CalibrationDifference &d)
{
    QStringList parts;
    const char *names[2] = {"a", "b"};
    for (int v = 0; v < 2; ++v) {
        if (!d.changed[v])
            continue;
        const auto show = [](const QByteArray &text) {
            return text.isEmpty() ? QStringLiteral("-") : QString::fromLatin1(text.trimmed());
        };
        QString part =
            QStringLiteral("%1 %2 -> %3").arg(QLatin1String(names[v]), show(d.before[v]), show(d.after[v]));
        if (d.percent[v])
            part += QStringLiteral(" (%1%2 %)")
                        .arg(*d.percent[v] >= 0 ? QStringLiteral("+") : QString())
                        .arg(*d.percent[v], 0, 'f', 2);
        parts << part;
    }
    return QStringLiteral("%1: %2").arg(d.entry).arg(parts.join(QStringLiteral(", ")));
}

} // namespace kalvo::config
