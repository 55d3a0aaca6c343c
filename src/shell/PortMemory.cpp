// The port the user last confirmed, kept in the user's settings between runs.
#include "PortMemory.h"

#include <QSettings>

namespace kalvo::shell {

namespace {
const QString kLastPortKey = QStringLiteral("connection/lastPort");

QSettings UserSettings()
{
    return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("kalvo"),
                     QStringLiteral("kalvo"));
}
} // namespace

QString StartPort(const Settings &settings)
{
    if (settings.fromFile)
        return settings.portName;
    const QString remembered = UserSettings().value(kLastPortKey).toString();
    return remembered.isEmpty() ? settings.portName : remembered;
}

void RememberPort(const QString &port)
{
    UserSettings().setValue(kLastPortKey, port);
}

} // namespace kalvo::shell
