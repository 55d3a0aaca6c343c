// The command-line switches of kalvo: "/K", "/Service", "/Entw", and --simulate / --timeout.
#pragma once

#include <QString>
#include <QStringList>

namespace kalvo::shell {

struct Switches {
    bool openConfiguration = false; // "/K"
    bool service = false;           // "/Service"
    bool development = false;       // "/Entw": trace file test.log and the development entries
    bool simulate = false;          // "--simulate": the virtual tester in the port chooser
    double timeoutSeconds = 40;     // "--timeout SECONDS", more than 0 and at most kMaxTimeoutSeconds
    QStringList warnings;           // switches that could not be used, for the user
};
// A day: far beyond any answer, and still a time the clock can count in.
constexpr double kMaxTimeoutSeconds = 86400;

// The switches are found anywhere in the command line, as plain substrings ("/Entwicklung"
// counts as "/Entw"); `arguments` excludes the program name.
Switches ParseSwitches(const QStringList &arguments);

} // namespace kalvo::shell
