// What the user reads when a serial port will not open.
#include "link/PortProblem.h"

#include <QStringList>

#include <gtest/gtest.h>

using namespace kalvo::link;

TEST(PortProblem, TheMessageSaysWhatHelpsForTheDeviceAndTheWayItFailed)
{
    const auto access = [](QString chosen, QString device, bool denied, bool missing, QString group,
                           bool groupMayUse, bool brltty) {
        PortAccess a;
        a.chosen = chosen;
        a.device = device;
        a.reason = denied ? QStringLiteral("Permission denied") : QStringLiteral("No such file or directory");
        a.denied = denied;
        a.missing = missing;
        a.group = group;
        a.groupMayUse = groupMayUse;
        a.brltty = brltty;
        return a;
    };
    const QString usb = QStringLiteral("/dev/ttyUSB0");
    const struct {
        const char *what;
        PortAccess access;
        QStringList present;
        QStringList absent;
    } cases[] = {
        {"a USB adapter of the group dialout",
         access(usb, usb, true, false, QStringLiteral("dialout"), true, false),
         {QStringLiteral("/dev/ttyUSB0 kann nicht geöffnet werden: Permission denied\n"),
          QStringLiteral("der Gruppe dialout"), QStringLiteral("sudo usermod -aG dialout $USER")},
         {QStringLiteral("COM"), QStringLiteral("brltty")}},
        {"a distribution that calls the group uucp",
         access(usb, usb, true, false, QStringLiteral("uucp"), true, false),
         {QStringLiteral("sudo usermod -aG uucp $USER")},
         {QStringLiteral("dialout")}},
        {"a device no group may use: where to look, and the usual groups",
         access(usb, usb, true, false, QStringLiteral("root"), true, false),
         {QStringLiteral("ls -l /dev/ttyUSB0"), QStringLiteral("dialout"), QStringLiteral("uucp")},
         {QStringLiteral("-aG root")}},
        {"brltty installed and the adapter gone",
         access(usb, usb, false, true, QString(), false, true),
         {QStringLiteral("sudo apt remove brltty")},
         {QStringLiteral("usermod")}},
        {"brltty does not take the board's own port",
         access(QStringLiteral("COM 1"), QStringLiteral("/dev/ttyS0"), true, false, QStringLiteral("dialout"),
                true, true),
         {QStringLiteral("COM 1 (/dev/ttyS0) kann nicht geöffnet werden"), QStringLiteral("-aG dialout")},
         {QStringLiteral("brltty")}},
        {"a Windows port held by another program",
         access(QStringLiteral("COM5"), QStringLiteral("COM5"), true, false, QString(), false, false),
         {QStringLiteral("COM5 kann nicht geöffnet werden"), QStringLiteral("anderes Programm")},
         {QStringLiteral("usermod"), QStringLiteral("brltty"), QStringLiteral("COM5 (")}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.what);
        const QString message = PortOpenMessage(c.access);
        for (const QString &text : c.present)
            EXPECT_TRUE(message.contains(text)) << message.toStdString() << "\nlacks: " << text.toStdString();
        for (const QString &text : c.absent)
            EXPECT_FALSE(message.contains(text)) << message.toStdString() << "\nhas: " << text.toStdString();
    }
}
