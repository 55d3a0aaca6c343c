// Finding records in the archive: searches, a device's history, what is due, the bytes of one.
#pragma once

#include "ArchiveTypes.h"

#include <QList>
#include <functional>
#include <optional>

namespace kalvo::archive {

class Archive;

// Records matching `filter`, newest test first (undated ones last); with dueBefore, the devices'
// latest records by their next test, soonest first. `limit` 0 means all.
QList<ArchivedRecord> ListRecords(Archive &archive, const ArchiveFilter &filter, int limit = 0,
                                  qint64 offset = 0);
// The same records handed over one at a time, so that memory does not grow with the archive.
void ForEachRecord(Archive &archive, const ArchiveFilter &filter,
                   const std::function<void(const ArchivedRecord &)> &use);
qint64 CountRecords(Archive &archive, const ArchiveFilter &filter);

// One record with its bytes exactly as read; nullopt when there is no record `id`.
struct StoredRecord {
    ArchivedRecord record;
    QByteArray raw;
};
std::optional<StoredRecord> FetchRecord(Archive &archive, qint64 id);

// Devices whose next test falls before `before`, soonest first; `limit` 0 means all; only those of
// the customer named exactly, when one is. Retired devices and those out of service are not due.
QList<DueDevice> DueDevices(Archive &archive, const QDate &before, int limit = 0,
                            const QString &customer = {});
// One device's latest test and next test date; nullopt when no dated test of it is archived.
std::optional<DueDevice> DeviceStatus(Archive &archive, const DeviceKey &device);

// A record whose bytes no longer match the SHA-256 they were stored with.
struct ChangedRecord {
    qint64 id = 0;
    QByteArray storedSha256;
    QByteArray actualSha256;
};
struct VerifyResult {
    qint64 checked = 0;
    QList<ChangedRecord> changed;
};
// Recomputes the hash of every record, a batch at a time.
VerifyResult VerifyArchive(Archive &archive);

} // namespace kalvo::archive
