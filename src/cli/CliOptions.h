// The global options of kalvo-cli and the command words behind them.
#pragma once

#include "CliCommand.h"

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
    QString customer;       // the archive's customer of records read that name none
    bool help = false;      // -h, --help: the list of commands
    bool version = false;   // --version
    QStringList words;      // the command, its action and its arguments
    // What is wrong with the command line; the fields above hold what could be read, --lang
    // included, so that the error is told in the language asked for.
    std::optional<UsageError> error;
};

// Global options stand before the command; every word from the command on is the command's.
// Options take their value as "--port NAME" or "--port=NAME".
CliOptions ParseCliOptions(const QStringList &arguments);

// The text of the global options, for the help.
QString GlobalOptionsHelp();

enum ExitCode { kExitDone = 0, kExitFailed = 1, kExitUsage = 2, kExitNoAnswer = 3 };

} // namespace kalvo::cli
