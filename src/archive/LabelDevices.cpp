// The devices that labels are printed for, and the device a label's code names.
//
// A device is an ID-Nr at one customer of the archive (the customer a record names, or the one
// chosen for its import); the label shows that customer.
#include "LabelDevices.h"

#include "Archive.h"
#include "ArchiveExport.h"
#include "ArchiveQueries.h"
#include "Customers.h"

#include <QSet>

namespace kalvo::archive {

namespace {

std::optional<LabelDevice> LatestTest(Archive &archive, const DeviceKey &key)
{
    const std::optional<DueDevice> status = DeviceStatus(archive, key);
    if (!status)
        return std::nullopt;
    const std::optional<StoredRecord> latest = FetchRecord(archive, status->lastRecordId);
    if (!latest)
        return std::nullopt;
    return LabelDevice{status->customerName, key.deviceId,     latest->record.deviceType,
                       status->lastTest,     status->nextTest, latest->record.failed,
                       status->lastRecordId};
}

} // namespace

QList<LabelDevice> LabelDevices(Archive &archive, const QList<qint64> &recordIds)
{
    QList<LabelDevice> devices;
    QSet<DeviceKey> seen;
    for (const qint64 id : recordIds) {
        const ArchivedRecord r = RecordOrError(archive, id).record;
        const DeviceKey key{r.customerId, r.deviceId};
        if (r.deviceId.isEmpty() || seen.contains(key))
            continue;
        seen.insert(key);
        // An undated device has no latest test: its label shows the record it was chosen by.
        devices << LatestTest(archive, key)
                       .value_or(LabelDevice{
                           r.customerName, r.deviceId, r.deviceType, r.testedAt, {}, r.failed, r.id});
    }
    return devices;
}

std::optional<LabelDevice> FindLabelDevice(Archive &archive, const LabelCode &code)
{
    const std::optional<Customer> customer = FindCustomer(archive, CustomerName(code.customer));
    if (!customer)
        return std::nullopt;
    return LatestTest(archive, {customer->id, code.deviceId});
}

} // namespace kalvo::archive
