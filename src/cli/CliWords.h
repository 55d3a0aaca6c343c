// The words behind a kalvo-cli command: positional ones, "--name VALUE" options and numbers.
#pragma once

#include <QMap>
#include <QString>
#include <QStringList>

namespace kalvo::cli {

// The positional words and the values of `--name VALUE` options.
struct Words {
    QStringList positional;
    QMap<QString, QString> options;
    QStringList flags; // the `--name` switches given, of those allowed
};

// Splits `words`; an option that is not one of `valueOptions` (which take a value) or `flagOptions`
// (which take none), or a value option without its value, is a UsageError.
Words SplitWords(const QStringList &words, const QStringList &valueOptions,
                 const QStringList &flagOptions = {});

// `word` as a whole number; a UsageError naming `what` when it is none.
int NumberArgument(const QString &word, const QString &what);

} // namespace kalvo::cli
