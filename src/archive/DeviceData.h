// A device's own data, kept apart from its records: edited, moved to another customer, retired;
// every change kept as a row of device_changes with who made it, where and when.
#pragma once

#include "ArchiveTypes.h"

#include <QDate>
#include <QDateTime>
#include <QList>
#include <QString>
#include <QVariant>
#include <initializer_list>
#include <optional>

namespace kalvo::archive {

class Archive;

struct DeviceData {
    DeviceKey key;
    QString customerName;
    QString recordType; // the type its newest record names
    QString regulation;
    QDateTime lastTest;
    qint64 lastRecordId = 0;
    QDate nextTest;
    // What a person entered; the records stay as they are.
    QString type; // empty: the records' type
    QString manufacturer;
    QString location;
    QString remarks;
    std::optional<int> intervalMonths; // nullopt: the regulation's
    bool outOfService = false;
    bool retired = false; // no longer due; its records stay
};

// The fields a change sets; those left nullopt stay as they are.
struct DeviceEdit {
    std::optional<QString> type = std::nullopt;
    std::optional<QString> manufacturer = std::nullopt;
    std::optional<QString> location = std::nullopt;
    std::optional<QString> remarks = std::nullopt;
    std::optional<bool> outOfService = std::nullopt;
    std::optional<bool> retired = std::nullopt;
};

// One change of a device's data or of an interval (a regulation's: no customer, no device).
struct DeviceChange {
    QDateTime changedAt; // UTC
    QString user;
    QString host;
    DeviceKey device;
    QString field; // "type", "manufacturer", "location", "remarks", "out_of_service", "retired",
                   // "interval", "customer", "regulation_interval:NAME"
    QString oldValue;
    QString newValue;
};

// The device; throws ArchiveError when the archive has no dated test of it.
DeviceData LoadDeviceData(Archive &archive, const DeviceKey &device);
// The devices `conditions` select ("WHERE ...", "ORDER BY ..."; `d` the device, `c` its customer).
QList<DeviceData> SelectDevices(Archive &archive, const QString &conditions,
                                std::initializer_list<QVariant> values = {});
// The devices with this ID-Nr, at every customer or at the customer named.
QList<DeviceData> FindDevices(Archive &archive, const QString &deviceId, const QString &customer = {});

// Each of these runs in a transaction of its own and writes one change row a changed field.
void ChangeDeviceData(Archive &archive, const DeviceKey &device, const DeviceEdit &edit);
// Moves the device and its records to `customer` (added when new); refused when that customer has a
// device of the same ID-Nr. Returns the device's new key.
DeviceKey MoveDevice(Archive &archive, const DeviceKey &device, const QString &customer);

// A change row, inside the caller's transaction.
void WriteDeviceChange(Archive &archive, const DeviceKey &device, const QString &field,
                       const QString &oldValue, const QString &newValue);
// The device's changes, oldest first.
QList<DeviceChange> DeviceChanges(Archive &archive, const DeviceKey &device);

// An import that brought records.
struct ImportEntry {
    qint64 id = 0;
    QDateTime importedAt; // UTC
    QString tester;
    QString testerSerial;
    QString file;
    QString user;
    QString host;
    QString version;
    QString customerName; // the customer chosen for records without one
    int added = 0;
    int known = 0;
    int refused = 0;
};
// The imports that brought records of the device, oldest first.
QList<ImportEntry> DeviceImports(Archive &archive, const DeviceKey &device);

// One line of a device's history of who did what: an import that brought its records, or a change.
struct DeviceEvent {
    QDateTime at; // UTC
    std::optional<ImportEntry> import;
    std::optional<DeviceChange> change;
};
// The device's imports and changes in the order they happened; of one moment, the import first.
QList<DeviceEvent> DeviceHistory(Archive &archive, const DeviceKey &device);

} // namespace kalvo::archive
