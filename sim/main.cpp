// kalvo-sim: a virtual Kalvomer tester on a pseudo-terminal; prints the terminal's path and serves it.
#include "AnswerStyle.h"
#include "FaultPlan.h"
#include "PtyHost.h"
#include "SampleRecords.h"
#include "VirtualTester.h"
#include "link/Clock.h"

#include <QCommandLineParser>
#include <QString>
#include <QStringList>
#include <csignal>
#include <cstdio>

using namespace kalvo;

namespace {

volatile std::sig_atomic_t g_stop = 0;

void OnSignal(int)
{
    g_stop = 1;
}

struct Options {
    int baud = 9600;
    QStringList faults;
    sim::AnswerStyle style = sim::AnswerStyle::Plain;
    int language = 0;
    QByteArray name;
    bool kym = false;
    int records = -1;          // -1: every sample record
    int accessoryRecords = -1; // -1: every sample record of the accessory
    bool noCurrent = false;
    bool specifications = false;
    QString logPath;
    double displayEvery = 0;
    double restartDelay = 0;
};

void PrintUsage(std::FILE *to)
{
    std::fprintf(
        to,
        "kalvo-sim [options]\n"
        "A virtual Kalvomer tester on a pseudo-terminal. The first line on stdout is the path of\n"
        "the terminal to open; the tester answers there until SIGINT or SIGTERM.\n\n"
        "  --baud N                 answer at N baud, 10 bits a byte (default 9600; 0: at once)\n"
        "  --fault FAULT            spoil answers, repeatable: KIND[:COMMAND][@N][xCOUNT]\n"
        "                           KIND: %s\n"
        "                           e.g. silence:dis?  garbage@3  refuse:dis?x5\n"
        "                           noack, noerase, rammingonly, resethalfway spoil the update\n"
        "                           loader an announce line starts, e.g. noerase:kal!upd3\n"
        "  --style STYLE            plain (default) or odd: other echoes, blanks, widths and\n"
        "                           line ends that a tester may also answer in, in odd bursts\n"
        "  --language CODE          display language code 0..99 (default 0, deutsch)\n"
        "  --name NAME              the tester's name, at most 8 characters (default KALVO-01)\n"
        "  --kym                    the KYM accessory is switched on in front of the tester\n"
        "  --records N              keep only the first N test records of the store (0: empty)\n"
        "  --kym-records N          keep only the first N records of the accessory (0: empty)\n"
        "  --no-current             no current record (no test made since switching on)\n"
        "  --specifications         two test specifications in front of the test records\n"
        "  --log FILE               one line per received command line: ms since start, TAB, bytes;\n"
        "                           TAB \"-\" behind what a loader or a restart took (no exchange)\n"
        "  --display-every SECONDS  send a remote-display frame whenever the line is idle that long\n"
        "  --restart-delay SECONDS  how long a restart keeps the tester from answering (default 0)\n"
        "  --version                the version of kalvo-sim\n"
        "  -h, --help               this text\n"
        "A value follows its option as the next word or behind \"=\" (--baud=0).\n",
        qPrintable(sim::FaultPlan::KindNames().join(QStringLiteral(", "))));
}

bool Fail(const QString &message)
{
    std::fprintf(stderr, "kalvo-sim: %s (see --help)\n", qPrintable(message));
    return false;
}

bool NonNegativeNumber(const QString &text, double &value)
{
    bool ok = false;
    value = text.toDouble(&ok);
    return ok && value >= 0;
}

// False after telling the user what is wrong.
bool ParseOptions(const QStringList &args, Options &options, bool &help, bool &version)
{
    QCommandLineParser parser;
    const QStringList valued = {"baud", "fault",         "language",      "style",   "name",
                                "log",  "display-every", "restart-delay", "records", "kym-records"};
    for (const QString &name : valued)
        parser.addOption(QCommandLineOption(name, QString(), QStringLiteral("value")));
    for (const char *name : {"kym", "no-current", "specifications", "version"})
        parser.addOption(QCommandLineOption(QString::fromLatin1(name)));
    parser.addOption(QCommandLineOption(QStringList{QStringLiteral("h"), QStringLiteral("help")}));
    if (!parser.parse(args)) {
        const QStringList unknown = parser.unknownOptionNames();
        if (!unknown.isEmpty())
            return Fail(QStringLiteral("unknown option \"--%1\"").arg(unknown.first()));
        // A value option takes the next word whatever it is: only the last word can lack its value.
        if (valued.contains(args.last().mid(2)))
            return Fail(QStringLiteral("%1 needs a value").arg(args.last()));
        return Fail(parser.errorText());
    }
    if (!parser.positionalArguments().isEmpty())
        return Fail(QStringLiteral("unknown option \"%1\"").arg(parser.positionalArguments().first()));
    help = parser.isSet(QStringLiteral("help"));
    version = parser.isSet(QStringLiteral("version"));
    options.kym = parser.isSet(QStringLiteral("kym"));
    options.noCurrent = parser.isSet(QStringLiteral("no-current"));
    options.specifications = parser.isSet(QStringLiteral("specifications"));
    for (const QString &name : valued) {
        const QString arg = QStringLiteral("--") + name;
        for (const QString &value : parser.values(name)) {
            bool ok = true;
            if (arg == QLatin1String("--baud")) {
                options.baud = value.toInt(&ok);
                if (!ok || options.baud < 0)
                    return Fail(
                        QStringLiteral("--baud wants a whole number of 0 or more, not \"%1\"").arg(value));
            } else if (arg == QLatin1String("--fault")) {
                QString error;
                if (!sim::FaultPlan::Parse(value, &error))
                    return Fail(error);
                options.faults << value;
            } else if (arg == QLatin1String("--style")) {
                const auto style = sim::ParseAnswerStyle(value);
                if (!style)
                    return Fail(QStringLiteral("--style wants %1, not \"%2\"")
                                    .arg(sim::AnswerStyleNames().join(QStringLiteral(" or ")), value));
                options.style = *style;
            } else if (arg == QLatin1String("--language")) {
                options.language = value.toInt(&ok);
                if (!ok || options.language < 0 || options.language > 99)
                    return Fail(
                        QStringLiteral("--language wants a code from 0 to 99, not \"%1\"").arg(value));
            } else if (arg == QLatin1String("--name")) {
                options.name = value.toLatin1();
                if (options.name.isEmpty() || options.name.size() > 8)
                    return Fail(QStringLiteral("--name wants 1 to 8 characters, not \"%1\"").arg(value));
            } else if (arg == QLatin1String("--records") || arg == QLatin1String("--kym-records")) {
                const int count = value.toInt(&ok);
                if (!ok || count < 0)
                    return Fail(
                        QStringLiteral("%1 wants a whole number of 0 or more, not \"%2\"").arg(arg, value));
                (arg == QLatin1String("--records") ? options.records : options.accessoryRecords) = count;
            } else if (arg == QLatin1String("--log")) {
                options.logPath = value;
            } else if (arg == QLatin1String("--display-every")) {
                if (!NonNegativeNumber(value, options.displayEvery))
                    return Fail(QStringLiteral("--display-every wants seconds, not \"%1\"").arg(value));
            } else if (arg == QLatin1String("--restart-delay")) {
                if (!NonNegativeNumber(value, options.restartDelay))
                    return Fail(QStringLiteral("--restart-delay wants seconds, not \"%1\"").arg(value));
            }
        }
    }
    return true;
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList args;
    for (int i = 0; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);
    Options options;
    bool help = false, version = false;
    if (!ParseOptions(args, options, help, version))
        return 2;
    if (help) {
        PrintUsage(stdout);
        return 0;
    }
    if (version) {
        std::printf("kalvo-sim %s\n", KALVO_VERSION);
        return 0;
    }

    sim::VirtualTester tester(link::SteadyClock::instance());
    tester.setBaud(options.baud);
    tester.setStyle(options.style);
    tester.setRestartDelay(link::FromSeconds(options.restartDelay));
    tester.model().setLanguage(options.language);
    tester.model().setKymInFront(options.kym);
    sim::RecordStore &store = tester.model().records();
    if (options.records >= 0)
        store.KeepFirst(options.records);
    if (options.specifications)
        store.setSpecifications(sim::SampleSpecifications());
    if (options.accessoryRecords >= 0)
        store.setAccessoryRecords(store.accessoryRecords().mid(0, options.accessoryRecords));
    if (options.noCurrent)
        store.setCurrent(std::nullopt);
    if (!options.name.isEmpty())
        tester.model().setName(options.name);
    for (const QString &fault : std::as_const(options.faults))
        tester.faults().add(fault);

    sim::PtyHost host(tester);
    host.setDisplayEvery(link::FromSeconds(options.displayEvery));
    QString error;
    if (!options.logPath.isEmpty() && !host.OpenLog(options.logPath, &error)) {
        std::fprintf(stderr, "kalvo-sim: cannot write the log %s\n", qPrintable(error));
        return 1;
    }
    if (!host.Open(&error)) {
        std::fprintf(stderr, "kalvo-sim: no pseudo-terminal: %s\n", qPrintable(error));
        return 1;
    }

    struct sigaction action {};
    action.sa_handler = OnSignal;
    sigemptyset(&action.sa_mask);
    // No SA_RESTART: the signal must wake poll().
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);

    std::printf("%s\n", qPrintable(host.slavePath()));
    std::fflush(stdout);

    switch (host.Run(g_stop)) {
    case sim::PtyHost::End::Stopped: return 0;
    case sim::PtyHost::End::Vanished:
        std::fprintf(stderr, "kalvo-sim: the line vanished, as the fault plan asked\n");
        return 0;
    case sim::PtyHost::End::Failed:
        std::fprintf(stderr, "kalvo-sim: %s\n", qPrintable(host.failure()));
        return 1;
    }
    return 0;
}
