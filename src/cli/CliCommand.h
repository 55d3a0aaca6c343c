// One kalvo-cli command: its words, its help line and what it does.
#pragma once

#include "CliTexts.h"

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace kalvo::cli {

class CliContext;

struct CliCommand {
    QString name;     // the command word, e.g. "identify"
    QString synopsis; // its arguments, e.g. "[--update-dir DIR]"; names every option it takes
    QString summary;  // one line for `kalvo-cli help`
    // Gets the words behind the command name; returns the exit code. Throws UsageError for bad words.
    std::function<int(CliContext &, const QStringList &)> run;
};

// Thrown by a command whose arguments are wrong; main prints it with the command's synopsis, in
// the program's language.
struct UsageError {
    UsageText kind;
    QStringList args; // what the text names, in the order of its %1, %2, ...

    QString In(const QString &language) const;
};

inline UsageError Usage(UsageText kind, const QStringList &args = {})
{
    return {kind, args};
}

QList<CliCommand> LinkCommands();
QList<CliCommand> ShellCommands();
QList<CliCommand> RecordCommands();
QList<CliCommand> ConfigCommands();
QList<CliCommand> UpdateCommands();
QList<CliCommand> SpecdbCommands();
QList<CliCommand> ArchiveCommands();

} // namespace kalvo::cli
