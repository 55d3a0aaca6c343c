// What the serial line needs of the operating system: the standard ports' devices, one name for
// each port however it is written, and how many bytes still wait to leave.
#pragma once

#include <QSerialPort>
#include <QString>
#include <QtGlobal>
#include <optional>

namespace kalvo::platform {

// The device of the standard port `number` (1 to 4): COM1..COM4 on Windows, /dev/ttyS0..3 elsewhere.
QString StandardPortDevice(int number);
// The one name a port goes by: on Windows "\\.\COM12", "com12" and "COM12" are the same port
// ("COM12"); elsewhere the name as it stands.
QString CanonicalPortName(const QString &name);
// Bytes handed to the driver that have not yet left the line of the open port (read through its
// native handle: a descriptor on Unix, a HANDLE on Windows); nullopt when the driver cannot say.
std::optional<qint64> BytesLeftToSend(const QSerialPort &port);

} // namespace kalvo::platform
