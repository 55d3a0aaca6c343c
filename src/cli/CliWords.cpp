// The words behind a kalvo-cli command: positional ones, "--name VALUE" options and numbers.
#include "CliWords.h"

#include "CliCommand.h"

namespace kalvo::cli {

int NumberArgument(const QString &word, const QString &what)
{
    bool ok = false;
    const int value = word.toInt(&ok);
    if (!ok)
        throw UsageError{QStringLiteral("%1 muss eine Zahl sein, nicht %2").arg(what, word)};
    return value;
}

Words SplitWords(const QStringList &words, const QStringList &valueOptions, const QStringList &flagOptions)
{
    Words result;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (!words[i].startsWith(QLatin1String("--"))) {
            result.positional << words[i];
        } else if (flagOptions.contains(words[i])) {
            result.flags << words[i];
        } else if (valueOptions.contains(words[i]) && i + 1 < words.size()) {
            result.options.insert(words[i], words[i + 1]);
            ++i;
        } else {
            throw UsageError{QStringLiteral("unbekanntes Argument %1").arg(words[i])};
        }
    }
    return result;
}

} // namespace kalvo::cli
