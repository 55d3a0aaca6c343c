// How long a tested device stays good: an interval in months per regulation, overridable per device.
#include "RetestIntervals.h"

#include "Archive.h"
#include "ArchiveTypes.h"

#include "records/RecordDecoding.h"

#include <QSqlQuery>

namespace kalvo::archive {

namespace {

bool IsMedical(int regulationCode)
{
    return regulationCode == 6 || regulationCode == 7; // DIN VDE 0751 and the medical EN
}

void CheckMonths(int months)
{
    if (months < 1 || months > kLongestIntervalMonths)
        throw ArchiveError(QStringLiteral("Prüfintervall %1 Monate: erlaubt sind 1 bis %2")
                               .arg(months)
                               .arg(kLongestIntervalMonths));
}

// Moves the next test of the devices `where` selects (one bound value) to their current interval.
void RecomputeNextTests(Archive &archive, const QString &where, const QVariant &value)
{
    const RetestIntervals intervals = LoadIntervals(archive);
    QSqlQuery select = archive.Exec(
        QStringLiteral("SELECT device_id, regulation, last_tested_at FROM devices WHERE ") + where, {value});
    QList<std::pair<QString, QDate>> changes;
    while (archive.Next(select)) {
        const QString device = select.value(0).toString();
        const int months = intervals.MonthsFor(device, select.value(1).toString());
        changes.append({device, NextTestDate(TimestampFrom(select.value(2)).date(), months)});
    }
    QSqlQuery update =
        archive.Prepare(QStringLiteral("UPDATE devices SET next_test = ? WHERE device_id = ?"));
    for (const auto &[device, next] : changes)
        archive.Run(update, {DateValue(next), device});
}

} // namespace

QList<std::pair<QString, int>> DefaultRegulationIntervals()
{
    QList<std::pair<QString, int>> intervals;
    for (int code = 0; code <= 9; ++code)
        intervals.append({records::RegulationName(code),
                          IsMedical(code) ? kMedicalIntervalMonths : kAppliancesIntervalMonths});
    return intervals;
}

int RetestIntervals::MonthsFor(const QString &deviceId, const QString &regulation) const
{
    if (const auto own = byDevice.constFind(deviceId); own != byDevice.cend())
        return *own;
    return byRegulation.value(regulation, kAppliancesIntervalMonths);
}

RetestIntervals LoadIntervals(Archive &archive)
{
    RetestIntervals intervals;
    QSqlQuery regulations =
        archive.Exec(QStringLiteral("SELECT regulation, months FROM regulation_intervals"));
    while (archive.Next(regulations))
        intervals.byRegulation.insert(regulations.value(0).toString(), regulations.value(1).toInt());
    QSqlQuery devices = archive.Exec(QStringLiteral("SELECT device_id, months FROM device_intervals"));
    while (archive.Next(devices))
        intervals.byDevice.insert(devices.value(0).toString(), devices.value(1).toInt());
    return intervals;
}

QDate NextTestDate(const QDate &lastTest, int months)
{
    return lastTest.addMonths(months);
}

void SetRegulationInterval(Archive &archive, const QString &regulation, int months)
{
    CheckMonths(months);
    archive.InTransaction([&] {
        archive.Exec(QStringLiteral("DELETE FROM regulation_intervals WHERE regulation = ?"), {regulation});
        archive.Exec(QStringLiteral("INSERT INTO regulation_intervals (regulation, months) VALUES (?, ?)"),
                     {regulation, months});
        RecomputeNextTests(archive,
                           QStringLiteral("regulation = ? AND device_id NOT IN (SELECT device_id FROM "
                                          "device_intervals)"),
                           regulation);
    });
}

void SetDeviceInterval(Archive &archive, const QString &deviceId, std::optional<int> months)
{
    if (months)
        CheckMonths(*months);
    archive.InTransaction([&] {
        archive.Exec(QStringLiteral("DELETE FROM device_intervals WHERE device_id = ?"), {deviceId});
        if (months)
            archive.Exec(QStringLiteral("INSERT INTO device_intervals (device_id, months) VALUES (?, ?)"),
                         {deviceId, *months});
        RecomputeNextTests(archive, QStringLiteral("device_id = ?"), deviceId);
    });
}

} // namespace kalvo::archive
