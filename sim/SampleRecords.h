// The records a new virtual tester holds: test records, test specifications and the accessory's records.
#pragma once

#include "RecordStore.h"

#include <QByteArray>
#include <QList>

namespace kalvo::sim {

// Test records in the stored form ("P" + 74 fields + "$FF"), oldest first.
QList<QByteArray> SampleTestRecords();
// Two complete test specifications, for a store that holds some (kalvo-sim --specifications).
QList<Specification> SampleSpecifications();
// Records the KYM accessory has collected, with its device, customer and repair data (fields 55..74).
QList<QByteArray> SampleAccessoryRecords();

} // namespace kalvo::sim
