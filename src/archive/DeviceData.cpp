// A device's own data, its moves and its change rows.
#include "DeviceData.h"

#include "Archive.h"
#include "Customers.h"
#include "WhoAndWhere.h"

#include <QSqlQuery>
#include <algorithm>

namespace kalvo::archive {

namespace {

const char kSelect[] =
    "SELECT d.customer_id, d.device_id, c.name, d.device_type, d.regulation, d.last_tested_at,"
    " d.last_record_id, d.next_test, d.given_type, d.manufacturer, d.location, d.remarks,"
    " d.interval_months, d.out_of_service, d.retired FROM devices d JOIN customers c ON c.id = d.customer_id";

DeviceData DeviceFromRow(const QSqlQuery &q)
{
    DeviceData d;
    d.key = {q.value(0).toLongLong(), q.value(1).toString()};
    d.customerName = q.value(2).toString();
    d.recordType = q.value(3).toString();
    d.regulation = q.value(4).toString();
    d.lastTest = TimestampFrom(q.value(5));
    d.lastRecordId = q.value(6).toLongLong();
    d.nextTest = DateFrom(q.value(7));
    d.type = q.value(8).toString();
    d.manufacturer = q.value(9).toString();
    d.location = q.value(10).toString();
    d.remarks = q.value(11).toString();
    if (!q.value(12).isNull())
        d.intervalMonths = q.value(12).toInt();
    d.outOfService = q.value(13).toInt() != 0;
    d.retired = q.value(14).toInt() != 0;
    return d;
}

QString YesNo(bool value)
{
    return value ? QStringLiteral("ja") : QStringLiteral("nein");
}

// Sets one text column when it changes, with its change row.
void ChangeText(Archive &archive, const DeviceKey &device, const char *column, const char *field,
                const QString &before, const std::optional<QString> &after)
{
    if (!after || *after == before)
        return;
    archive.Exec(QStringLiteral("UPDATE devices SET %1 = ? WHERE customer_id = ? AND device_id = ?")
                     .arg(QLatin1String(column)),
                 {TextValue(*after), device.customerId, device.deviceId});
    WriteDeviceChange(archive, device, QLatin1String(field), before, *after);
}

void ChangeFlag(Archive &archive, const DeviceKey &device, const char *column, bool before,
                std::optional<bool> after)
{
    if (!after || *after == before)
        return;
    archive.Exec(QStringLiteral("UPDATE devices SET %1 = ? WHERE customer_id = ? AND device_id = ?")
                     .arg(QLatin1String(column)),
                 {*after ? 1 : 0, device.customerId, device.deviceId});
    WriteDeviceChange(archive, device, QLatin1String(column), YesNo(before), YesNo(*after));
}

} // namespace

QList<DeviceData> SelectDevices(Archive &archive, const QString &conditions,
                                std::initializer_list<QVariant> values)
{
    QSqlQuery query = archive.Exec(QLatin1String(kSelect) + QLatin1Char(' ') + conditions, values);
    QList<DeviceData> devices;
    while (archive.Next(query))
        devices.append(DeviceFromRow(query));
    return devices;
}

DeviceData LoadDeviceData(Archive &archive, const DeviceKey &device)
{
    const QList<DeviceData> found =
        SelectDevices(archive, QStringLiteral("WHERE d.customer_id = ? AND d.device_id = ?"),
                      {device.customerId, device.deviceId});
    if (found.isEmpty())
        throw ArchiveError(
            QStringLiteral("Gerät \"%1\": im Archiv ist kein datierter Test davon").arg(device.deviceId));
    return found.first();
}

QList<DeviceData> FindDevices(Archive &archive, const QString &deviceId, const QString &customer)
{
    if (customer.isEmpty())
        return SelectDevices(archive, QStringLiteral("WHERE d.device_id = ? ORDER BY c.name"), {deviceId});
    return SelectDevices(archive, QStringLiteral("WHERE d.device_id = ? AND c.name = ?"),
                         {deviceId, CustomerName(customer)});
}

void ChangeDeviceData(Archive &archive, const DeviceKey &device, const DeviceEdit &edit)
{
    archive.InTransaction([&] {
        const DeviceData d = LoadDeviceData(archive, device);
        ChangeText(archive, device, "given_type", "type", d.type, edit.type);
        ChangeText(archive, device, "manufacturer", "manufacturer", d.manufacturer, edit.manufacturer);
        ChangeText(archive, device, "location", "location", d.location, edit.location);
        ChangeText(archive, device, "remarks", "remarks", d.remarks, edit.remarks);
        ChangeFlag(archive, device, "out_of_service", d.outOfService, edit.outOfService);
        ChangeFlag(archive, device, "retired", d.retired, edit.retired);
    });
}

DeviceKey MoveDevice(Archive &archive, const DeviceKey &device, const QString &customer)
{
    DeviceKey moved;
    archive.InTransaction([&] {
        const DeviceData d = LoadDeviceData(archive, device);
        moved = {CustomerIdFor(archive, {0, customer, {}, {}, {}}), device.deviceId};
        if (moved == device)
            return;
        QSqlQuery there =
            archive.Exec(QStringLiteral("SELECT 1 FROM devices WHERE customer_id = ? AND device_id = ?"),
                         {moved.customerId, moved.deviceId});
        if (archive.Next(there))
            throw ArchiveError(QStringLiteral("Gerät \"%1\": beim Kunden \"%2\" gibt es schon ein Gerät mit "
                                              "dieser ID-Nr")
                                   .arg(device.deviceId, CustomerName(customer)));
        there.finish();
        // The records follow the device, so that its history moves with it; their bytes stay.
        archive.Exec(
            QStringLiteral("UPDATE records SET customer_id = ? WHERE customer_id = ? AND device_id = ?"),
            {moved.customerId, device.customerId, device.deviceId});
        archive.Exec(
            QStringLiteral("UPDATE devices SET customer_id = ? WHERE customer_id = ? AND device_id = ?"),
            {moved.customerId, device.customerId, device.deviceId});
        // Its earlier changes go with it too; the move is kept under the new customer.
        archive.Exec(QStringLiteral(
                         "UPDATE device_changes SET customer_id = ? WHERE customer_id = ? AND device_id = ?"),
                     {moved.customerId, device.customerId, device.deviceId});
        WriteDeviceChange(archive, moved, QStringLiteral("customer"), d.customerName, CustomerName(customer));
    });
    return moved;
}

void WriteDeviceChange(Archive &archive, const DeviceKey &device, const QString &field,
                       const QString &oldValue, const QString &newValue)
{
    const WhoAndWhere who = CurrentWhoAndWhere();
    archive.Exec(QStringLiteral("INSERT INTO device_changes (changed_at, system_user, host, customer_id,"
                                " device_id, field, old_value, new_value) VALUES (?, ?, ?, ?, ?, ?, ?, ?)"),
                 {TimestampValue(QDateTime::currentDateTimeUtc()), TextValue(who.user), TextValue(who.host),
                  device.customerId, TextValue(device.deviceId), field, TextValue(oldValue),
                  TextValue(newValue)});
}

QList<DeviceChange> DeviceChanges(Archive &archive, const DeviceKey &device)
{
    QSqlQuery query = archive.Exec(
        QStringLiteral("SELECT changed_at, system_user, host, field, old_value, new_value FROM device_changes"
                       " WHERE customer_id = ? AND device_id = ? ORDER BY changed_at, id"),
        {device.customerId, device.deviceId});
    QList<DeviceChange> changes;
    while (archive.Next(query))
        changes.append({TimestampFrom(query.value(0)), query.value(1).toString(), query.value(2).toString(),
                        device, query.value(3).toString(), query.value(4).toString(),
                        query.value(5).toString()});
    return changes;
}

QList<ImportEntry> DeviceImports(Archive &archive, const DeviceKey &device)
{
    QSqlQuery query = archive.Exec(
        QStringLiteral("SELECT i.id, i.imported_at, i.source_tester, i.source_serial, i.source_file,"
                       " i.system_user, i.host, i.kalvo_version, c.name, i.added, i.known, i.refused"
                       " FROM imports i JOIN customers c ON c.id = i.customer_id WHERE i.id IN"
                       " (SELECT import_id FROM records WHERE customer_id = ? AND device_id = ?)"
                       " ORDER BY i.id"),
        {device.customerId, device.deviceId});
    QList<ImportEntry> imports;
    while (archive.Next(query))
        imports.append({query.value(0).toLongLong(), TimestampFrom(query.value(1)), query.value(2).toString(),
                        query.value(3).toString(), query.value(4).toString(), query.value(5).toString(),
                        query.value(6).toString(), query.value(7).toString(), query.value(8).toString(),
                        query.value(9).toInt(), query.value(10).toInt(), query.value(11).toInt()});
    return imports;
}

QList<DeviceEvent> DeviceHistory(Archive &archive, const DeviceKey &device)
{
    QList<DeviceEvent> events;
    for (const ImportEntry &entry : DeviceImports(archive, device))
        events.append({entry.importedAt, entry, std::nullopt});
    for (const DeviceChange &change : DeviceChanges(archive, device))
        events.append({change.changedAt, std::nullopt, change});
    // Both lists are in order already; the stable sort keeps that order within one moment.
    std::stable_sort(events.begin(), events.end(),
                     [](const DeviceEvent &a, const DeviceEvent &b) { return a.at < b.at; });
    return events;
}

} // namespace kalvo::archive
