// The names a user may give the serial port, and the system device each one means.
#include "PortNames.h"

#include "platform/SerialLine.h"

namespace kalvo::link {

QStringList StandardPortNames()
{
    return {QStringLiteral("COM 1"), QStringLiteral("COM 2"), QStringLiteral("COM 3"),
            QStringLiteral("COM 4")};
}

int StandardPortNumber(const QString &name)
{
    return static_cast<int>(StandardPortNames().indexOf(name.trimmed().toUpper())) + 1;
}

QString SystemPortName(const QString &name)
{
    const int number = StandardPortNumber(name);
    if (number == 0)
        return name.trimmed();
    return platform::StandardPortDevice(number);
}

QStringList PortChoices(const QStringList &systemPorts)
{
    QStringList choices = StandardPortNames();
    QStringList covered;
    for (const QString &name : std::as_const(choices))
        covered << platform::CanonicalPortName(name) << platform::CanonicalPortName(SystemPortName(name));
    for (const QString &port : systemPorts) {
        const QString canonical = platform::CanonicalPortName(port);
        if (!covered.contains(canonical)) {
            covered << canonical;
            choices << port;
        }
    }
    return choices;
}

} // namespace kalvo::link
