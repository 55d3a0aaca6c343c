// The devices that labels are printed for, and the device a label's code names.
//
// A device is its ID-Nr here, its customer the one of its latest record.
#include "LabelDevices.h"

#include "Archive.h"
#include "ArchiveExport.h"
#include "ArchiveQueries.h"

#include <QSet>

namespace kalvo::archive {

namespace {

std::optional<LabelDevice> LatestTest(Archive &archive, const QString &deviceId)
{
    const std::optional<DueDevice> status = DeviceStatus(archive, deviceId);
    if (!status)
        return std::nullopt;
    const std::optional<StoredRecord> latest = FetchRecord(archive, status->lastRecordId);
    if (!latest)
        return std::nullopt;
    const ArchivedRecord &r = latest->record;
    return LabelDevice{r.customer,       deviceId, r.deviceType,        status->lastTest,
                       status->nextTest, r.failed, status->lastRecordId};
}

} // namespace

QList<LabelDevice> LabelDevices(Archive &archive, const QList<qint64> &recordIds)
{
    QList<LabelDevice> devices;
    QSet<QString> seen;
    for (const qint64 id : recordIds) {
        const ArchivedRecord r = RecordOrError(archive, id).record;
        if (r.deviceId.isEmpty() || seen.contains(r.deviceId))
            continue;
        seen.insert(r.deviceId);
        // An undated device has no latest test: its label shows the record it was chosen by.
        devices << LatestTest(archive, r.deviceId)
                       .value_or(
                           LabelDevice{r.customer, r.deviceId, r.deviceType, r.testedAt, {}, r.failed, r.id});
    }
    return devices;
}

std::optional<LabelDevice> FindLabelDevice(Archive &archive, const LabelCode &code)
{
    std::optional<LabelDevice> device = LatestTest(archive, code.deviceId);
    if (!device || device->customer != code.customer)
        return std::nullopt;
    return device;
}

} // namespace kalvo::archive
