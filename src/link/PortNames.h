// The names a user may give the serial port, and the system device each one means.
#pragma once

#include <QString>
#include <QStringList>

namespace kalvo::link {

// The name the port chooser and the settings file use for the built-in virtual tester.
inline const QString kSimulatorPortName = QStringLiteral("Simulator");

// "COM 1" to "COM 4" in the chooser's order.
QStringList StandardPortNames();
// "COM 1".."COM 4" are COM1..COM4 on Windows and /dev/ttyS0../dev/ttyS3 elsewhere;
// every other name is used as it stands.
QString SystemPortName(const QString &name);
// 1 to 4 for the four standard names, 0 otherwise.
int StandardPortNumber(const QString &name);
// The port chooser's list: "COM 1".."COM 4", then each of the system's ports (`systemPorts`, as
// QSerialPortInfo locates them) that none of the four stands for, each once (however it is
// written: platform::CanonicalPortName), in their order.
QStringList PortChoices(const QStringList &systemPorts);

} // namespace kalvo::link
