// What a user reads when the serial port will not open, and what to do about it: the group that
// may use the device and the command that joins it, brltty (which takes USB serial adapters on
// Ubuntu), another program holding a Windows port.
#pragma once

#include <QString>

namespace kalvo::link {

struct PortAccess {
    QString chosen;           // as the user named it: "COM 1", "/dev/ttyUSB0"
    QString device;           // the system's name: "/dev/ttyS0", "COM1"
    QString reason;           // the system's description of the failure
    bool denied = false;      // the system refused access
    bool missing = false;     // there is no such device
    QString group;            // the device's group, empty when not known
    bool groupMayUse = false; // the group may read and write the device
    bool brltty = false;      // brltty is installed
};

// The facts about `device` that the message needs, taken from the file system.
PortAccess DescribePortAccess(const QString &chosen, const QString &device, const QString &reason,
                              bool denied, bool missing);

// "/dev/ttyUSB0 kann nicht geöffnet werden: Permission denied", and on the lines below it what
// helps. The chosen name and the device both appear when they differ ("COM 1 (/dev/ttyS0)").
QString PortOpenMessage(const PortAccess &access);

} // namespace kalvo::link
