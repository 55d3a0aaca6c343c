// The global options of kalvo-cli and the command words behind them.
#include "CliOptions.h"

#include "CliWords.h"

#include <QCommandLineParser>

namespace kalvo::cli {

namespace {

struct GlobalOption {
    const char *name;
    const char *valueName; // nullptr: a switch
    const char *description;
};

constexpr GlobalOption kGlobalOptions[] = {
    {"port", "NAME", "the serial port (default: line 0 of Q417.ini, else \"COM 1\")"},
    {"simulate", nullptr, "talk to the virtual tester in this process instead of a port"},
    {"timeout", "SECONDS", "how long to wait for an answer (default 40)"},
    {"yes", nullptr, "answer OK to every question"},
    {"trace", "FILE", "write the development trace of received bytes to FILE"},
    {"lang", "NAME",
     "the program's language: deutsch, englisch, französisch, italienisch, tschechisch, "
     "nederlandske, spain"},
    {"archive", "URL", "the record archive (default: as the user settings say)"},
    {"no-archive", nullptr, "keep the records read out of the archive"},
    {"customer", "NAME", "the archive's customer of records read that name none (default: \"ohne Kunde\")"},
};

} // namespace

CliOptions ParseCliOptions(const QStringList &arguments)
{
    QCommandLineParser parser;
    // The first word that is no option is the command; what follows belongs to it.
    parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
    QStringList valueOptions, flagOptions{QStringLiteral("--version")};
    for (const GlobalOption &option : kGlobalOptions)
        (option.valueName ? valueOptions : flagOptions) << QStringLiteral("--") + QLatin1String(option.name);
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    parser.addOption(help);
    AddOptions(parser, valueOptions, flagOptions);

    CliOptions options;
    const bool parsed = parser.parse(QStringList{QStringLiteral("kalvo-cli")} + arguments);
    options.port = parser.value(QStringLiteral("port"));
    options.simulate = parser.isSet(QStringLiteral("simulate"));
    options.yes = parser.isSet(QStringLiteral("yes"));
    options.traceFile = parser.value(QStringLiteral("trace"));
    options.language = parser.value(QStringLiteral("lang"));
    options.archiveUrl = parser.value(QStringLiteral("archive"));
    options.noArchive = parser.isSet(QStringLiteral("no-archive"));
    options.customer = parser.value(QStringLiteral("customer"));
    options.help = parser.isSet(help);
    options.version = parser.isSet(QStringLiteral("version"));
    options.words = parser.positionalArguments();
    if (!parsed) {
        options.error = ParserError(parser, arguments, valueOptions);
        return options;
    }
    if (options.help || options.version)
        return options;
    if (parser.isSet(QStringLiteral("timeout"))) {
        bool ok = false;
        options.timeoutSeconds = parser.value(QStringLiteral("timeout")).toDouble(&ok);
        if (!ok || !(options.timeoutSeconds > 0)) // "nan" is no number of seconds
            options.error = Usage(UsageText::TimeoutSeconds);
    }
    if (options.words.isEmpty())
        options.error = Usage(UsageText::NoCommand);
    return options;
}

QString GlobalOptionsHelp()
{
    QString text = QStringLiteral("global options (before the command):\n");
    for (const GlobalOption &option : kGlobalOptions) {
        QString name = QStringLiteral("--") + QLatin1String(option.name);
        if (option.valueName)
            name += QLatin1Char(' ') + QLatin1String(option.valueName);
        text += QStringLiteral("  %1 %2\n").arg(name, -18).arg(QString::fromUtf8(option.description));
    }
    text +=
        QStringLiteral("  %1 %2\n").arg(QStringLiteral("-h, --help"), -18).arg(QStringLiteral("this text"));
    text += QStringLiteral("  %1 %2\n")
                .arg(QStringLiteral("--version"), -18)
                .arg(QStringLiteral("the version of kalvo-cli"));
    return text;
}

} // namespace kalvo::cli
