// The words behind a kalvo-cli command: positional ones, "--name VALUE" options and numbers.
#pragma once

#include "CliCommand.h"

#include <QMap>
#include <QString>
#include <QStringList>

class QCommandLineParser;

namespace kalvo::cli {

// The positional words and the values of `--name VALUE` options.
struct Words {
    QStringList positional;
    QMap<QString, QString> options;      // the last value of each value option given
    QMap<QString, QStringList> repeated; // every value of each value option given, in order
    QStringList flags;                   // the `--name` switches given, of those allowed
};

// Splits `words`; an option that is not one of `valueOptions` (which take a value) or `flagOptions`
// (which take none), or a value option without its value, is a UsageError. A value follows its
// option as the next word or behind "=" ("--slot=2"). Only words that start with "--" are options.
Words SplitWords(const QStringList &words, const QStringList &valueOptions,
                 const QStringList &flagOptions = {});

// Adds long options named as typed ("--port") to `parser`.
void AddOptions(QCommandLineParser &parser, const QStringList &valueOptions, const QStringList &flagOptions);
// What made `parser` refuse `arguments`, in words of our own (the parser's are English only).
UsageError ParserError(const QCommandLineParser &parser, const QStringList &arguments,
                       const QStringList &valueOptions);

// `word` as a whole number; a UsageError naming `what` when it is none.
int NumberArgument(const QString &word, const QString &what);

// The words of `known` nearest to a mistyped `word` (fewest single-character edits), when one is
// near enough to be meant; empty otherwise.
QStringList NearestWords(const QString &word, const QStringList &known);

} // namespace kalvo::cli
