// Unix devices are told apart from Windows ports by their path, so one build explains both.
#include "PortProblem.h"

#include <QFileInfo>
#include <QStringList>

namespace kalvo::link {

namespace {

bool IsUnixDevice(const QString &device)
{
    return device.startsWith(QLatin1Char('/'));
}

bool IsUsbAdapter(const QString &device)
{
    return device.contains(QLatin1String("ttyUSB")) || device.contains(QLatin1String("ttyACM")) ||
           device.contains(QLatin1String("/serial/by-"));
}

QString JoinCommand(const QString &group)
{
    return QStringLiteral("sudo usermod -aG %1 $USER").arg(group);
}

QStringList UnixHelp(const PortAccess &access)
{
    QStringList help;
    if (access.denied) {
        if (access.groupMayUse && !access.group.isEmpty() && access.group != QLatin1String("root"))
            help << QStringLiteral(
                        "%1 gehört der Gruppe %2; wer nicht in ihr ist, darf die Schnittstelle nicht "
                        "öffnen. Beitreten mit: %3, danach ab- und wieder anmelden.")
                        .arg(access.device, access.group, JoinCommand(access.group));
        else
            help << QStringLiteral(
                        "Wer %1 öffnen darf, zeigt: ls -l %1. Meist ist es die Gruppe dialout (auf "
                        "manchen Systemen uucp): %2, danach ab- und wieder anmelden.")
                        .arg(access.device, JoinCommand(QStringLiteral("dialout")));
    }
    if (access.brltty && IsUsbAdapter(access.device) && (access.denied || access.missing))
        help << QStringLiteral(
            "brltty (Braillezeilen) übernimmt USB-Seriell-Adapter, besonders unter Ubuntu; "
            "verschwindet der Adapter gleich nach dem Einstecken: sudo apt remove brltty");
    return help;
}

} // namespace

PortAccess DescribePortAccess(const QString &chosen, const QString &device, const QString &reason,
                              bool denied, bool missing)
{
    PortAccess access;
    access.chosen = chosen;
    access.device = device;
    access.reason = reason;
    access.denied = denied;
    access.missing = missing;
    if (IsUnixDevice(device)) {
        const QFileInfo info(device);
        access.group = info.group();
        access.groupMayUse = info.permissions().testFlags(QFile::ReadGroup | QFile::WriteGroup);
        access.brltty = QFileInfo::exists(QStringLiteral("/usr/bin/brltty")) ||
                        QFileInfo::exists(QStringLiteral("/bin/brltty"));
    }
    return access;
}

QString PortOpenMessage(const PortAccess &access)
{
    const QString name = access.chosen.trimmed() == access.device
                             ? access.device
                             : QStringLiteral("%1 (%2)").arg(access.chosen.trimmed(), access.device);
    QStringList lines{QStringLiteral("%1 kann nicht geöffnet werden: %2").arg(name, access.reason)};
    if (IsUnixDevice(access.device))
        lines << UnixHelp(access);
    else if (access.denied)
        lines << QStringLiteral("Ein anderes Programm hat %1 schon geöffnet; erst wenn es die Schnittstelle "
                                "freigibt, kann kalvo sie benutzen.")
                     .arg(access.device);
    return lines.join(QLatin1Char('\n'));
}

} // namespace kalvo::link
