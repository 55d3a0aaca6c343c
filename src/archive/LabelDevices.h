// The devices that labels are printed for, and the device a label's code names.
#pragma once

#include "LabelCode.h"

#include <QDateTime>
#include <QList>
#include <QString>
#include <optional>

namespace kalvo::archive {

class Archive;

// What a test label shows of a device: its latest test.
struct LabelDevice {
    QString customer;
    QString deviceId;
    QString deviceType;
    QDateTime lastTest;
    QDate nextTest; // invalid: the device has no dated test
    bool failed = false;
    qint64 lastRecordId = 0;
};

// The devices of the records `recordIds`, each once, in the order first named, with their latest
// test. Records without an ID-Nr name no device and are left out. Every archive query of the labels
// is here.
QList<LabelDevice> LabelDevices(Archive &archive, const QList<qint64> &recordIds);
// The device a label's code names (customer and ID-Nr); nullopt when the archive has none.
std::optional<LabelDevice> FindLabelDevice(Archive &archive, const LabelCode &code);

} // namespace kalvo::archive
