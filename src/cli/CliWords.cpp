// The words behind a kalvo-cli command: positional ones, "--name VALUE" options and numbers.
#include "CliWords.h"

#include <QCommandLineParser>
#include <algorithm>

namespace kalvo::cli {

namespace {

QString OptionName(const QString &typed)
{
    return typed.mid(2);
}

// Edits between two words, case-insensitive: a letter inserted, dropped or changed, or two
// neighbours swapped ("cvs" for "csv"), each one edit.
int EditDistance(const QString &a, const QString &b)
{
    const QString x = a.toLower(), y = b.toLower();
    const qsizetype columns = y.size() + 1;
    QList<int> d((x.size() + 1) * columns);
    const auto at = [&d, columns](qsizetype i, qsizetype j) -> int & { return d[i * columns + j]; };
    for (qsizetype i = 0; i <= x.size(); ++i)
        at(i, 0) = static_cast<int>(i);
    for (qsizetype j = 0; j <= y.size(); ++j)
        at(0, j) = static_cast<int>(j);
    for (qsizetype i = 1; i <= x.size(); ++i) {
        for (qsizetype j = 1; j <= y.size(); ++j) {
            const int change = x[i - 1] == y[j - 1] ? 0 : 1;
            at(i, j) = std::min({at(i - 1, j) + 1, at(i, j - 1) + 1, at(i - 1, j - 1) + change});
            if (i > 1 && j > 1 && x[i - 1] == y[j - 2] && x[i - 2] == y[j - 1])
                at(i, j) = std::min(at(i, j), at(i - 2, j - 2) + 1);
        }
    }
    return at(x.size(), y.size());
}

} // namespace

int NumberArgument(const QString &word, const QString &what)
{
    bool ok = false;
    const int value = word.toInt(&ok);
    if (!ok)
        throw Usage(UsageText::NotANumber, {what, word});
    return value;
}

void AddOptions(QCommandLineParser &parser, const QStringList &valueOptions, const QStringList &flagOptions)
{
    for (const QString &option : valueOptions)
        parser.addOption(QCommandLineOption(OptionName(option), QString(), QStringLiteral("value")));
    for (const QString &option : flagOptions)
        parser.addOption(QCommandLineOption(OptionName(option)));
}

UsageError ParserError(const QCommandLineParser &parser, const QStringList &arguments,
                       const QStringList &valueOptions)
{
    const QStringList unknown = parser.unknownOptionNames();
    if (!unknown.isEmpty()) {
        const QString &name = unknown.first();
        return Usage(UsageText::UnknownOption,
                     {(name.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + name});
    }
    for (const QString &argument : arguments) {
        const QString option = argument.section(QLatin1Char('='), 0, 0);
        if (argument.startsWith(QLatin1String("--")) && argument.contains(QLatin1Char('=')) &&
            !valueOptions.contains(option))
            return Usage(UsageText::TakesNoValue, {option});
    }
    // A value option takes the next word whatever it is: only the last word can lack its value.
    return Usage(UsageText::NeedsValue, {arguments.value(arguments.size() - 1)});
}

Words SplitWords(const QStringList &words, const QStringList &valueOptions, const QStringList &flagOptions)
{
    // Only "--" words are options: the others go behind "--", in their order, so that a value such
    // as "-5" stays a word of its own.
    QStringList optionWords, positional;
    for (qsizetype i = 0; i < words.size(); ++i) {
        if (!words[i].startsWith(QLatin1String("--"))) {
            positional << words[i];
            continue;
        }
        optionWords << words[i];
        if (!valueOptions.contains(words[i]))
            continue;
        if (i + 1 >= words.size()) // else the parser would take the "--" below as the value
            throw Usage(UsageText::NeedsValue, {words[i]});
        optionWords << words[++i];
    }
    QCommandLineParser parser;
    AddOptions(parser, valueOptions, flagOptions);
    if (!parser.parse(QStringList{QStringLiteral("kalvo-cli")} + optionWords +
                      QStringList{QStringLiteral("--")} + positional)) {
        UsageError error = ParserError(parser, optionWords, valueOptions);
        if (error.kind == UsageText::UnknownOption)
            error.kind = UsageText::UnknownArgument;
        throw error;
    }
    Words result;
    result.positional = parser.positionalArguments();
    for (const QString &option : valueOptions) {
        if (!parser.isSet(OptionName(option)))
            continue;
        result.repeated.insert(option, parser.values(OptionName(option)));
        result.options.insert(option, parser.value(OptionName(option)));
    }
    for (const QString &option : flagOptions)
        if (parser.isSet(OptionName(option)))
            result.flags << option;
    return result;
}

QStringList NearestWords(const QString &word, const QStringList &known)
{
    // Near enough: a third of the word's letters may be wrong, at least one and at most three.
    const int limit = std::clamp(static_cast<int>(word.size() / 3), 1, 3);
    int best = limit;
    QStringList nearest;
    for (const QString &candidate : known) {
        const int distance = EditDistance(word, candidate);
        if (distance > best)
            continue;
        if (distance < best) {
            best = distance;
            nearest.clear();
        }
        if (distance == best)
            nearest << candidate;
    }
    return nearest;
}

} // namespace kalvo::cli
