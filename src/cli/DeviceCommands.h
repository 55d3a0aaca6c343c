// kalvo-cli archive device: a device's own data, its move to another customer, its retirement.
#pragma once

#include "archive/DeviceData.h"

#include <QString>
#include <QStringList>

namespace kalvo::archive {
class Archive;
}

namespace kalvo::cli {

class CliContext;

// The command's synopsis (a function: other files' constants are built from it at start-up).
QString DeviceSynopsis();

// The device of that ID-Nr, at the customer named when one is; a usage error when there is none,
// or when several customers have one of that ID-Nr and none is named.
archive::DeviceData OneDevice(archive::Archive &archive, const QString &deviceId, const QString &customer);

// `words` starts with "device".
int ArchiveDevice(CliContext &context, const QStringList &words);

} // namespace kalvo::cli
