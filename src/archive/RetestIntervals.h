// How long a tested device stays good: an interval in months per regulation, overridable per device.
#pragma once

#include "ArchiveTypes.h"

#include <QDate>
#include <QHash>
#include <QList>
#include <QString>
#include <optional>
#include <utility>

namespace kalvo::archive {

class Archive;

constexpr int kAppliancesIntervalMonths = 12;
constexpr int kMedicalIntervalMonths = 24;
constexpr int kLongestIntervalMonths = 120;

// Every regulation a record can name, with its interval of a new archive: medical equipment
// every 24 months, everything else every 12.
QList<std::pair<QString, int>> DefaultRegulationIntervals();

struct RetestIntervals {
    QHash<QString, int> byRegulation;
    QHash<DeviceKey, int> byDevice; // overrides the regulation's interval
    int MonthsFor(const DeviceKey &device, const QString &regulation) const;
};

RetestIntervals LoadIntervals(Archive &archive);
// Only the regulations' intervals (a device's own one is in its row).
RetestIntervals LoadRegulationIntervals(Archive &archive);

// The day a device tested on `lastTest` must be tested again.
QDate NextTestDate(const QDate &lastTest, int months);

// Sets the interval of a regulation (1..kLongestIntervalMonths months) and moves the next test of
// every device last tested to it that has no interval of its own. Throws ArchiveError. Each change
// is kept as a row of device_changes.
void SetRegulationInterval(Archive &archive, const QString &regulation, int months);
// Sets (or with nullopt removes) a device's own interval and moves its next test.
void SetDeviceInterval(Archive &archive, const DeviceKey &device, std::optional<int> months);
// The same inside a transaction the caller holds.
void SetDeviceIntervalIn(Archive &archive, const DeviceKey &device, std::optional<int> months);

} // namespace kalvo::archive
