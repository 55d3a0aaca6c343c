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
};

// Splits `words`; an option that is not one of `valueOptions`, or has no value, is a UsageError.
Words SplitWords(const QStringList &words, const QStringList &valueOptions);

// `word` as a whole number; a UsageError naming `what` when it is none.
int NumberArgument(const QString &word, const QString &what);

} // namespace kalvo::cli
