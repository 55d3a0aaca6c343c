// How long a tested device stays good: an interval in months per regulation, overridable per device.
#include "RetestIntervals.h"

#include "Archive.h"
#include "ArchiveTypes.h"
#include "DeviceData.h"

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

// Moves the next test of the devices `where` selects to their current interval.
void RecomputeNextTests(Archive &archive, const QString &where, std::initializer_list<QVariant> values)
{
    const RetestIntervals intervals = LoadIntervals(archive);
    QSqlQuery select = archive.Exec(
        QStringLiteral("SELECT customer_id, device_id, regulation, last_tested_at FROM devices WHERE ") +
            where,
        values);
    QList<std::pair<DeviceKey, QDate>> changes;
    while (archive.Next(select)) {
        const DeviceKey device{select.value(0).toLongLong(), select.value(1).toString()};
        const int months = intervals.MonthsFor(device, select.value(2).toString());
        changes.append({device, NextTestDate(TimestampFrom(select.value(3)).date(), months)});
    }
    QSqlQuery update = archive.Prepare(
        QStringLiteral("UPDATE devices SET next_test = ? WHERE customer_id = ? AND device_id = ?"));
    for (const auto &[device, next] : changes)
        archive.Run(update, {DateValue(next), device.customerId, device.deviceId});
}

QString MonthsText(std::optional<int> months)
{
    return months ? QString::number(*months) : QString();
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

int RetestIntervals::MonthsFor(const DeviceKey &device, const QString &regulation) const
{
    if (const auto own = byDevice.constFind(device); own != byDevice.cend())
        return *own;
    return byRegulation.value(regulation, kAppliancesIntervalMonths);
}

RetestIntervals LoadRegulationIntervals(Archive &archive)
{
    RetestIntervals intervals;
    QSqlQuery regulations =
        archive.Exec(QStringLiteral("SELECT regulation, months FROM regulation_intervals"));
    while (archive.Next(regulations))
        intervals.byRegulation.insert(regulations.value(0).toString(), regulations.value(1).toInt());
    return intervals;
}

RetestIntervals LoadIntervals(Archive &archive)
{
    RetestIntervals intervals = LoadRegulationIntervals(archive);
    QSqlQuery devices = archive.Exec(QStringLiteral(
        "SELECT customer_id, device_id, interval_months FROM devices WHERE interval_months IS NOT NULL"));
    while (archive.Next(devices))
        intervals.byDevice.insert({devices.value(0).toLongLong(), devices.value(1).toString()},
                                  devices.value(2).toInt());
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
        QSqlQuery old = archive.Exec(
            QStringLiteral("SELECT months FROM regulation_intervals WHERE regulation = ?"), {regulation});
        const std::optional<int> before =
            archive.Next(old) ? std::optional<int>(old.value(0).toInt()) : std::nullopt;
        old.finish();
        archive.Exec(QStringLiteral("DELETE FROM regulation_intervals WHERE regulation = ?"), {regulation});
        archive.Exec(QStringLiteral("INSERT INTO regulation_intervals (regulation, months) VALUES (?, ?)"),
                     {regulation, months});
        if (before != months)
            WriteDeviceChange(archive, {}, QStringLiteral("regulation_interval:") + regulation,
                              MonthsText(before), MonthsText(months));
        RecomputeNextTests(archive, QStringLiteral("regulation = ? AND interval_months IS NULL"),
                           {regulation});
    });
}

void SetDeviceIntervalIn(Archive &archive, const DeviceKey &device, std::optional<int> months)
{
    if (months)
        CheckMonths(*months);
    const std::optional<int> before = LoadDeviceData(archive, device).intervalMonths;
    if (before == months)
        return;
    archive.Exec(
        QStringLiteral("UPDATE devices SET interval_months = ? WHERE customer_id = ? AND device_id = ?"),
        {months ? QVariant(*months) : QVariant(QMetaType(QMetaType::Int)), device.customerId,
         device.deviceId});
    WriteDeviceChange(archive, device, QStringLiteral("interval"), MonthsText(before), MonthsText(months));
    RecomputeNextTests(archive, QStringLiteral("customer_id = ? AND device_id = ?"),
                       {device.customerId, device.deviceId});
}

void SetDeviceInterval(Archive &archive, const DeviceKey &device, std::optional<int> months)
{
    if (months)
        CheckMonths(*months);
    archive.InTransaction([&] { SetDeviceIntervalIn(archive, device, months); });
}

} // namespace kalvo::archive
