// The global options of kalvo-cli and the command words behind them.
#pragma once

#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::cli {

struct CliOptions {
    QString port; // empty: line 0 of Q417.ini, else "COM 1"
    bool simulate = false;
    double timeoutSeconds = 40;
    bool yes = false;       // answer OK to every question
    QString traceFile;      // the development trace of received bytes
    QString language;       // the program's language, by its language name
    QString archiveUrl;     // the record archive; empty: as the user settings say
    bool noArchive = false; // records read are not put into the archive
    QStringList words;      // the command, its action and its arguments
};

// Global options stand before the command. Returns nullopt and sets `error` on a usage error.
std::optional<CliOptions> ParseCliOptions(const QStringList &arguments, QString &error);

enum ExitCode { kExitDone = 0, kExitFailed = 1, kExitUsage = 2, kExitNoAnswer = 3 };

} // namespace kalvo::cli
