// What the archive keeps of a record, how it is searched, and how it fails.
#pragma once

#include "link/Errors.h"

#include <QByteArray>
#include <QDate>
#include <QDateTime>
#include <QHashFunctions>
#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::archive {

constexpr int kArchiveErrorNumber = 31985;

// The archive cannot be opened, read or written; the message names the archive and the cause.
class ArchiveError : public link::KalvoError {
public:
    // `nativeCode`: the database's own code of the failure (SQLite's number, PostgreSQL's SQLSTATE).
    explicit ArchiveError(const QString &text, const QString &nativeCode = QString());
    const QString &nativeCode() const { return m_nativeCode; }

private:
    QString m_nativeCode;
};

// Where a record came from. Empty fields are unknown.
struct RecordSource {
    QString tester;       // the tester's name or the port it was read from
    QString testerSerial; // its serial number, when it was identified
    QString accessory;    // "KYM" when the record came through the accessory
    QString file;         // the record file it was read from or written to
    // The customer of the records that do not name one (the accessory's fields 61..64); empty:
    // kNoCustomer.
    QString customer = QString();
};

// The customer of records that name none and were read without one being chosen.
inline const QString kNoCustomer = QStringLiteral("ohne Kunde");

// One archived record: the searchable fields decoded from its bytes, where it came from, and the
// next test of its device (when the device has a dated test).
struct ArchivedRecord {
    qint64 id = 0;
    QByteArray sha256; // hex, 64 characters
    QString testerName;
    QString deviceId;
    QString deviceType;
    QDateTime testedAt; // invalid when the record's date could not be read
    QString regulation;
    QString verdict; // "bestanden" or "nicht bestanden"
    bool failed = false;
    QString protectionClass;
    QString appliedPart;
    // From the accessory, when it added its data.
    QString accessoryKind;
    QString accessoryType;
    QString maker;
    QString accessoryDeviceId;
    QString customer;
    QString street;
    QString postCode;
    QString town;
    RecordSource source;
    QDateTime importedAt;
    QDate nextTest; // of the device; invalid when unknown
    // The archive's customer the record belongs to: the one it names, or the one of its import.
    qint64 customerId = 0;
    QString customerName;
};

// A device: one ID-Nr at one customer of the archive.
struct DeviceKey {
    qint64 customerId = 0;
    QString deviceId;
    friend bool operator==(const DeviceKey &, const DeviceKey &) = default;
};
inline size_t qHash(const DeviceKey &key, size_t seed = 0)
{
    return qHashMulti(seed, key.customerId, key.deviceId);
}

// A search; every field that is set narrows it.
struct ArchiveFilter {
    QString deviceId;     // exactly this device
    QString type;         // part of the device type, any case
    QString customer;     // part of the customer's name the record carries, any case
    QString customerName; // exactly this customer of the archive
    QString text;         // part of any searchable field, any case
    std::optional<bool> failed;
    QString regulation; // exactly this regulation name
    QDate from;         // tested on or after
    QDate to;           // tested on or before
    // Only the latest record of each device whose next test falls before this date.
    QDate dueBefore;
};

// The latest test of a device and when it must be tested again.
struct DueDevice {
    qint64 customerId = 0;
    QString customerName;
    QString deviceId;
    QString deviceType;
    QString regulation;
    QDateTime lastTest;
    QDate nextTest;
    int intervalMonths = 0;
    qint64 lastRecordId = 0;
};

struct ImportResult {
    int added = 0; // new records
    int known = 0; // already in the archive (same bytes)
    // Records that could not be decoded, each with its position (1-based) and why; not stored.
    QStringList refused;
};

} // namespace kalvo::archive
