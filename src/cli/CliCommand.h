// One kalvo-cli command: its words, its help line and what it does.
#pragma once

#include <QList>
#include <QString>
#include <QStringList>
#include <functional>

namespace kalvo::cli {

class CliContext;

struct CliCommand {
    QString name;     // the command word, e.g. "identify"
    QString synopsis; // its arguments, e.g. "[--update-dir DIR]"
    QString summary;  // one line for `kalvo-cli help`
    // Gets the words behind the command name; returns the exit code. Throws UsageError for bad words.
    std::function<int(CliContext &, const QStringList &)> run;
};

// Thrown by a command whose arguments are wrong; main prints it with the command's synopsis.
struct UsageError {
    QString text;
};

QList<CliCommand> LinkCommands();
QList<CliCommand> ShellCommands();
QList<CliCommand> RecordCommands();
QList<CliCommand> ConfigCommands();
QList<CliCommand> UpdateCommands();
QList<CliCommand> SpecdbCommands();
QList<CliCommand> ArchiveCommands();

} // namespace kalvo::cli
