// The command-line switches of kalvo: "/K", "/Service", "/Entw", and --simulate / --timeout.
#include "Switches.h"

namespace kalvo::shell {

Switches ParseSwitches(const QStringList &arguments)
{
    const QString commandLine = arguments.join(QLatin1Char(' '));
    Switches switches;
    switches.openConfiguration = commandLine.contains(QLatin1String("/K"));
    switches.service = commandLine.contains(QLatin1String("/Service"));
    switches.development = commandLine.contains(QLatin1String("/Entw"));
    switches.simulate = arguments.contains(QLatin1String("--simulate"));
    const qsizetype timeout = arguments.indexOf(QLatin1String("--timeout"));
    if (timeout >= 0 && timeout + 1 < arguments.size()) {
        bool ok = false;
        const double seconds = arguments[timeout + 1].toDouble(&ok);
        if (ok && seconds > 0 && seconds <= kMaxTimeoutSeconds)
            switches.timeoutSeconds = seconds;
        else
            switches.warnings << QStringLiteral("--timeout %1: erwartet Sekunden über 0 bis %2, es gilt %3.")
                                     .arg(arguments[timeout + 1])
                                     .arg(kMaxTimeoutSeconds)
                                     .arg(switches.timeoutSeconds);
    }
    return switches;
}

} // namespace kalvo::shell
