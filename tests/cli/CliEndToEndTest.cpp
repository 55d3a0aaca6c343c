// kalvo-cli against kalvo-sim over a real pseudo-terminal: what it prints and the bytes that reach the
// tester.
#include "support/SilentPty.h"
#include "support/SimProcess.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <cmath>
#include <functional>
#include <gtest/gtest.h>

using namespace kalvo::testing;

namespace {

// kalvo-cli run in a folder whose Q417.ini holds `ini`.
RunResult RunWithSettings(const QByteArray &ini, const QStringList &arguments)
{
    QTemporaryDir dir;
    QFile file(dir.filePath(QStringLiteral("Q417.ini")));
    if (!file.open(QIODevice::WriteOnly) || file.write(ini) != ini.size())
        return {};
    file.close();
    return RunProgram(QStringLiteral("kalvo-cli"), arguments, 60, dir.path());
}

} // namespace

TEST(CliEndToEnd, IdentifyWakesConnectsAndIdentifiesInOrder)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult run = RunProgram(QStringLiteral("kalvo-cli"),
                                     {QStringLiteral("--port"), sim.pty(), QStringLiteral("identify")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("language: 0 deutsch"))) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("firmware: 1.52"))) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("name: KALVO-01"))) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("Kalvomer 9000"))) << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("d3: on"))) << run.out.toStdString();

    const QList<ReceivedLine> lines = sim.ReceivedLines();
    const QStringList expected = {"\\r",       "\\r",       "\\x04\\r", "\\x07\\r", "mes!0\\r", "kal!aus\\r",
                                  "var?E3\\r", "var?D3\\r", "dis?\\r",  "ver?\\r",  "idn?\\r"};
    EXPECT_EQ(sim.ReceivedBytes(), expected);
    ASSERT_GE(lines.size(), 4);
    // The wake-up bytes go out 0.1 s apart (the link's own tests hold the exact pause on a manual
    // clock). Here the times are when the simulator read each line, and a busy machine may let it
    // read one late: without the pauses the gaps would be a millisecond or two.
    EXPECT_GE(lines[2].ms - lines[1].ms, 60.0);
    EXPECT_GE(lines[3].ms - lines[2].ms, 60.0);
    EXPECT_GE(lines[3].ms - lines[1].ms, 160.0);
}

TEST(CliEndToEnd, SendPrintsEachAnswerWithControlCharactersEscaped)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult run =
        RunProgram(QStringLiteral("kalvo-cli"),
                   {QStringLiteral("--port"), sim.pty(), QStringLiteral("send"), QStringLiteral("var?D3"),
                    QStringLiteral("bit?4"), QStringLiteral("str!121,Müller")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    const QStringList out = run.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    ASSERT_EQ(out.size(), 3) << run.out.toStdString();
    EXPECT_TRUE(out[0].startsWith(QStringLiteral("var?D3=01.Y"))) << out[0].toStdString();
    EXPECT_TRUE(out[0].endsWith(QStringLiteral("\\x11")));
    EXPECT_TRUE(out[1].startsWith(QStringLiteral("bit?4"))) << out[1].toStdString();
    // A typed "ü" goes out as the tester's byte, as from the window's command line.
    EXPECT_EQ(sim.ReceivedBytes(), (QStringList{"var?D3\\r", "bit?4\\r", "str!121,M\\x81ller\\r"}));
}

TEST(CliEndToEnd, RefusalIsReportedWithItsNumberAndFailsTheRun)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult run =
        RunProgram(QStringLiteral("kalvo-cli"),
                   {QStringLiteral("--port"), sim.pty(), QStringLiteral("send"), QStringLiteral("xyz?")});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_TRUE(run.err.contains(QStringLiteral("31995:  "))) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("Protokoll"))) << run.out.toStdString();
}

TEST(CliEndToEnd, SilentPortEndsWithTheTimeoutMessageAndExitThree)
{
    SilentPty pty;
    ASSERT_FALSE(pty.path().isEmpty());
    const RunResult run = RunProgram(QStringLiteral("kalvo-cli"),
                                     {QStringLiteral("--timeout"), QStringLiteral("1"),
                                      QStringLiteral("--port"), pty.path(), QStringLiteral("identify")});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(run.err.trimmed(), QStringLiteral("3:  Kein Kalvomer gefunden"));
    EXPECT_EQ(pty.Drain(), QByteArray("\r\r\x04\r\x07\r"));
}

TEST(CliEndToEnd, UsageErrorsAndMissingPortsHaveTheirExitCodes)
{
    struct Case {
        QStringList args;
        int exitCode;
        QString told; // part of stderr, in the language the command line or Q417.ini asks for
    };
    const Case cases[] = {
        {{"frobnicate"}, 2, "unbekannter Befehl frobnicate (kalvo-cli help)"},
        {{"--timeout", "x", "identify"}, 2, "--timeout braucht eine Zahl von Sekunden größer 0"},
        {{"--timeout", "nan", "identify"}, 2, ""},
        {{"send"}, 2, ""},
        {{"--port", "/dev/kalvo-no-such-port", "identify"}, 1, ""},
        // A mistyped command: the nearest ones, by the fewest letters to change.
        {{"recods", "list"}, 2, "unbekannter Befehl recods – meinten Sie records?"},
        {{"identfy"}, 2, "meinten Sie identify?"},
        {{"cvs"}, 2, "meinten Sie csv?"},
        {{"lmits"}, 2, "meinten Sie limits?"},
        // Usage errors in the language asked for, before and behind the command.
        {{"--lang", "englisch", "recods"}, 2, "unknown command recods – did you mean records?"},
        {{"--lang=englisch", "--simulate", "identify", "--bogus"}, 2, ": unknown argument --bogus"},
        {{"--lang=französisch", "--simulate", "records", "show", "x"}, 2, ": N doit être un nombre, pas x"},
        {{"--lang", "tschechisch", "--bogus", "identify"}, 2, "neznámá volba --bogus"},
        {{"--simulate", "identify", "--update-dir"}, 2, "--update-dir braucht einen Wert"},
        {{"--yes=1", "identify"}, 2, "--yes nimmt keinen Wert"},
        {{"--port"}, 2, "--port braucht einen Wert"},
    };
    for (const Case &c : cases) {
        const RunResult run = RunProgram(QStringLiteral("kalvo-cli"), c.args);
        EXPECT_EQ(run.exitCode, c.exitCode)
            << c.args.join(' ').toStdString() << ": " << run.err.toStdString();
        EXPECT_FALSE(run.err.isEmpty());
        EXPECT_TRUE(run.err.contains(c.told))
            << c.args.join(' ').toStdString() << ": " << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty()) << run.out.toStdString();
    }
    // The language of Q417.ini's line 2 when the command line names none.
    const RunResult english = RunWithSettings("COM 1\r\n1\r\nenglisch\r\n", {QStringLiteral("recods")});
    EXPECT_EQ(english.exitCode, 2);
    EXPECT_TRUE(english.err.contains(QStringLiteral("unknown command recods – did you mean records?")))
        << english.err.toStdString();
}

// The commands and the options each takes, as its help must name them.
struct CommandHelp {
    const char *command;
    QStringList options;
};
const CommandHelp kCommandHelp[] = {
    {"identify", {"--update-dir"}},
    {"send", {}},
    {"clock", {}},
    {"name", {}},
    {"script", {"--out"}},
    {"records", {"--json", "--template"}},
    {"report", {"--record", "--pdf"}},
    {"kym", {}},
    {"csv", {"--header"}},
    {"vars", {"--json"}},
    {"limits", {"--store"}},
    {"cal", {"--store", "--json"}},
    {"modem", {"--tel1", "--tel2", "--init", "--store"}},
    {"update", {"--lang"}},
    {"pfile", {"--slot", "--out"}},
    {"templates", {}},
    {"specdb",
     {"--json", "--regulation", "--class", "--type", "--parts", "--sfc", "--switch", "--limit", "--all"}},
    {"archive",
     {"--json", "--pdf", "--before", "--regulation", "--device", "--failed", "--passed", "--customer",
      "--customer-name", "--location", "--to", "--replace", "--sheet", "--first", "--inspector"}},
};

TEST(CliEndToEnd, HelpOnTheProgramAndOnEveryCommandGoesToStdoutAndExitsZero)
{
    const QStringList globals{"--port",    "--simulate",   "--timeout", "--yes",     "--trace",   "--lang",
                              "--archive", "--no-archive", "--help",    "--version", "--customer"};
    for (const QStringList &args : {QStringList{"-h"}, QStringList{"--help"}, QStringList{"help"}}) {
        const RunResult run = RunProgram(QStringLiteral("kalvo-cli"), args);
        EXPECT_EQ(run.exitCode, 0) << args.join(' ').toStdString() << ": " << run.err.toStdString();
        EXPECT_TRUE(run.err.isEmpty()) << run.err.toStdString();
        for (const QString &option : globals)
            EXPECT_TRUE(run.out.contains(option))
                << args.join(' ').toStdString() << " lacks " << option.toStdString();
    }
    // The table names every command the help lists.
    const QString list = RunProgram(QStringLiteral("kalvo-cli"), {QStringLiteral("help")}).out;
    const QString commands = list.mid(list.indexOf(QStringLiteral("\ncommands:\n")));
    QStringList listed;
    for (const QString &line : commands.split(QLatin1Char('\n')))
        if (line.startsWith(QStringLiteral("  ")) && !line.startsWith(QStringLiteral("   ")))
            listed << line.trimmed().section(QLatin1Char(' '), 0, 0);
    QStringList known;
    for (const CommandHelp &help : kCommandHelp)
        known << QString::fromLatin1(help.command);
    known << QStringLiteral("help");
    EXPECT_EQ(listed, known);

    for (const CommandHelp &help : kCommandHelp) {
        const QString command = QString::fromLatin1(help.command);
        for (const QStringList &args : {QStringList{command, "--help"}, QStringList{command, "list", "-h"},
                                        QStringList{"help", command}}) {
            const RunResult run = RunProgram(QStringLiteral("kalvo-cli"), args);
            EXPECT_EQ(run.exitCode, 0) << args.join(' ').toStdString() << ": " << run.err.toStdString();
            EXPECT_TRUE(run.err.isEmpty()) << args.join(' ').toStdString() << ": " << run.err.toStdString();
            EXPECT_TRUE(run.out.startsWith(QStringLiteral("kalvo-cli [global options] ") + command + ' '))
                << run.out.toStdString();
            for (const QString &option : help.options + QStringList{"--port", "--lang"})
                EXPECT_TRUE(run.out.contains(option))
                    << args.join(' ').toStdString() << " lacks " << option.toStdString();
        }
    }
}

TEST(CliEndToEnd, EveryProgramTellsItsVersionWithoutAWindow)
{
    // No display at all, and a platform that needs one: a program that opened a window would fail.
    const QByteArray display = qgetenv("DISPLAY"), platform = qgetenv("QT_QPA_PLATFORM");
    qunsetenv("DISPLAY");
    qputenv("QT_QPA_PLATFORM", "xcb");
    for (const char *program : {"kalvo-cli", "kalvo-sim", "kalvo"}) {
        const RunResult run = RunProgram(QString::fromLatin1(program), {QStringLiteral("--version")}, 20);
        EXPECT_EQ(run.exitCode, 0) << program << ": " << run.err.toStdString();
        EXPECT_EQ(run.out,
                  QStringLiteral("%1 %2\n").arg(QLatin1String(program), QStringLiteral(KALVO_VERSION)))
            << program;
    }
    qputenv("DISPLAY", display);
    qputenv("QT_QPA_PLATFORM", platform);
    if (platform.isNull())
        qunsetenv("QT_QPA_PLATFORM");
    if (display.isNull())
        qunsetenv("DISPLAY");
}

TEST(CliEndToEnd, AValueBehindAnEqualsSignIsTheSameAsTheNextWord)
{
    QTemporaryDir dir;
    const QString script = dir.filePath(QStringLiteral("a.abl"));
    QFile file(script);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("dis?\r\n") > 0);
    file.close();
    struct Case {
        QStringList spaced, joined;
    };
    const Case cases[] = {
        {{"--timeout", "5", "--lang", "englisch", "--simulate", "identify", "--update-dir", dir.path()},
         {"--timeout=5", "--lang=englisch", "--simulate", "identify", "--update-dir=" + dir.path()}},
        {{"specdb", "defaults", "--regulation", "VDE 0702", "--class", "05"},
         {"specdb", "defaults", "--regulation=VDE 0702", "--class=05"}},
        {{"--simulate", "records", "show", "2", "--template", "3"},
         {"--simulate", "records", "show", "2", "--template=3"}},
        {{"--simulate", "script", script, "--out", dir.filePath(QStringLiteral("a.txt"))},
         {"--simulate", "script", script, "--out=" + dir.filePath(QStringLiteral("b.txt"))}},
        {{"--simulate", "--yes", "modem", "set", "--tel1", "0815", "--init", "ATZ=1", "--store"},
         {"--simulate", "--yes", "modem", "set", "--tel1=0815", "--init=ATZ=1", "--store"}},
    };
    for (const Case &c : cases) {
        const RunResult spaced = RunProgram(QStringLiteral("kalvo-cli"), c.spaced, 60, dir.path());
        const RunResult joined = RunProgram(QStringLiteral("kalvo-cli"), c.joined, 60, dir.path());
        EXPECT_EQ(spaced.exitCode, 0) << c.spaced.join(' ').toStdString() << ": " << spaced.err.toStdString();
        EXPECT_EQ(joined.exitCode, 0) << c.joined.join(' ').toStdString() << ": " << joined.err.toStdString();
        EXPECT_FALSE(spaced.out.isEmpty() && !c.spaced.contains(QStringLiteral("modem")));
        EXPECT_EQ(joined.out, spaced.out) << c.joined.join(' ').toStdString();
    }
}

// Each listing command's --json: one document on stdout, read back with QJsonDocument, holding what
// the text form prints.
TEST(CliEndToEnd, ListingCommandsGiveTheDataOfTheirTextAsOneJsonDocument)
{
    QTemporaryDir dir;
    const auto entries = [](const QJsonDocument &json) {
        QStringList lines;
        for (const QJsonValue &row : json.array()) {
            const QString entry = row[QStringLiteral("entry")].toString();
            // The number of each entry is the one behind its ":" (records) or in front (specdb).
            const QString number = QString::number(row[QStringLiteral("number")].toInt());
            lines << (entry.endsWith(QLatin1Char(':') + number) || entry.startsWith(number + QLatin1Char(':'))
                          ? entry
                          : QStringLiteral("number %1 does not fit %2").arg(number, entry));
        }
        return lines;
    };
    const auto strings = [](const QJsonDocument &json) {
        QStringList lines;
        for (const QJsonValue &row : json.array())
            lines << row.toString();
        return lines;
    };
    const auto reading = [](const QJsonDocument &json) {
        const QJsonObject o = json.object();
        return QStringList{
            QStringLiteral("%1 %2: %3 %4 (%5)")
                .arg(o[QStringLiteral("entry")].toString(), o[QStringLiteral("command")].toString(),
                     o[QStringLiteral("value")].toString(), o[QStringLiteral("binary")].toString())
                .arg(o[QStringLiteral("number")].toInt())};
    };
    const auto defaults = [](const QJsonDocument &json) {
        const QJsonObject o = json.object();
        QStringList lines{
            QStringLiteral("regulation: %1, class %2, type %3")
                .arg(o[QStringLiteral("regulation")].toString(), o[QStringLiteral("class")].toString(),
                     o[QStringLiteral("type")].toString()),
            QStringLiteral("switch: %1 (%2)")
                .arg(o[QStringLiteral("switch")].toString(), o[QStringLiteral("switchMeaning")].toString()),
            QStringLiteral("codes 0-19:")};
        for (const QJsonValue &code : o[QStringLiteral("codes")].toArray())
            lines.last() += QLatin1Char(' ') + code.toString();
        for (const QJsonValue &value : o[QStringLiteral("boxes")].toArray()) {
            const QJsonObject box = value.toObject();
            const QString limit = box[QStringLiteral("limit")].toString();
            lines << QStringLiteral("GWert %1 %2 %3 %4")
                         .arg(box[QStringLiteral("box")].toInt())
                         .arg(box[QStringLiteral("meaning")].toString(),
                              limit.isEmpty() ? QStringLiteral("-") : limit,
                              box[QStringLiteral("source")].toString());
        }
        return lines;
    };
    const auto differences = [](const QJsonDocument &json) {
        QStringList lines;
        for (const QJsonValue &row : json.array()) {
            const QJsonObject d = row.toObject();
            lines << d[QStringLiteral("text")].toString();
            // The values behind the text: the second one of entry 2 went from 1.0004 to 1.0007.
            const QJsonArray percent = d[QStringLiteral("percent")].toArray();
            if (d[QStringLiteral("entry")].toInt() != 2 ||
                d[QStringLiteral("before")].toArray() != QJsonArray{"-6", "1.0004"} ||
                d[QStringLiteral("after")].toArray() != QJsonArray{"-6", "1.0007"} || !percent[0].isNull() ||
                std::abs(percent[1].toDouble() - 0.03) > 0.001)
                lines << QStringLiteral("the values do not fit the text");
        }
        return lines;
    };
    // Two calibration backups that differ in one value.
    ASSERT_EQ(
        RunProgram(QStringLiteral("kalvo-cli"), {"--simulate", "cal", "backup", "a.cal"}, 60, dir.path())
            .exitCode,
        0);
    QFile a(dir.filePath(QStringLiteral("a.cal"))), b(dir.filePath(QStringLiteral("b.cal")));
    ASSERT_TRUE(a.open(QIODevice::ReadOnly) && b.open(QIODevice::WriteOnly));
    const QByteArray backup = a.readAll();
    ASSERT_TRUE(backup.contains("\n2:-6,1.0004\r"));
    b.write(QByteArray(backup).replace("\n2:-6,1.0004\r", "\n2:-6,1.0007\r"));
    b.close();

    struct Case {
        QStringList args;
        std::function<QStringList(const QJsonDocument &)> lines;
    };
    const Case cases[] = {
        {{"--simulate", "records", "list"}, entries},
        {{"--simulate", "specdb", "list"}, entries},
        {{"--simulate", "vars", "list"}, strings},
        {{"--simulate", "vars", "dump"}, strings},
        {{"--simulate", "vars", "read", "D3"}, reading},
        {{"--simulate", "vars", "read", "VMITBEZ"}, reading},
        {{"specdb", "defaults", "--regulation", "VDE 0751", "--class", "06"}, defaults},
        {{"cal", "diff", "a.cal", "b.cal"}, differences},
    };
    for (const Case &c : cases) {
        const QStringList &args = c.args;
        const RunResult text = RunProgram(QStringLiteral("kalvo-cli"), args, 60, dir.path());
        const RunResult json =
            RunProgram(QStringLiteral("kalvo-cli"), args + QStringList{"--json"}, 60, dir.path());
        ASSERT_EQ(text.exitCode, 0) << args.join(' ').toStdString() << ": " << text.err.toStdString();
        EXPECT_EQ(json.exitCode, 0) << args.join(' ').toStdString() << ": " << json.err.toStdString();
        QJsonParseError error;
        const QJsonDocument document = QJsonDocument::fromJson(json.out.toUtf8(), &error);
        ASSERT_EQ(error.error, QJsonParseError::NoError)
            << args.join(' ').toStdString() << ": " << error.errorString().toStdString() << "\n"
            << json.out.toStdString();
        // Blanks that only line the text's columns up do not count.
        QStringList lines, fromJson;
        for (const QString &line : text.out.split(QLatin1Char('\n'), Qt::SkipEmptyParts))
            lines << line.simplified();
        for (const QString &line : c.lines(document))
            fromJson << line.simplified();
        EXPECT_FALSE(lines.isEmpty()) << args.join(' ').toStdString();
        EXPECT_EQ(fromJson, lines) << args.join(' ').toStdString();
    }
}

TEST(CliEndToEnd, VanishedLineEndsWithExitThree)
{
    SimProcess sim({QStringLiteral("--fault"), QStringLiteral("vanish:var?E3")});
    ASSERT_TRUE(sim.started());
    const RunResult run = RunProgram(QStringLiteral("kalvo-cli"),
                                     {QStringLiteral("--timeout"), QStringLiteral("3"),
                                      QStringLiteral("--port"), sim.pty(), QStringLiteral("identify")});
    EXPECT_EQ(run.exitCode, 3) << run.err.toStdString();
    EXPECT_FALSE(run.err.isEmpty());
}

TEST(CliEndToEnd, SimulatedTesterIdentifiesWithoutAnyPort)
{
    const RunResult run =
        RunProgram(QStringLiteral("kalvo-cli"), {QStringLiteral("--simulate"), QStringLiteral("identify")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("firmware: 1.52")));
}

TEST(CliEndToEnd, IdentifyShowsVersionDatesWithTheirTimeAndTheAccessorysVersion)
{
    // The tester writes day first on every PC: "17.03.09 10:42" is 17 March and "05.02.09" the
    // 5th of February, under German settings and under US ones (month first) alike.
    const QByteArray previous = qgetenv("LC_ALL");
    RunResult run;
    for (const char *locale : {"en_US.UTF-8", "de_DE.UTF-8"}) {
        qputenv("LC_ALL", locale);
        SimProcess sim({QStringLiteral("--kym")});
        ASSERT_TRUE(sim.started());
        run = RunCli(sim, {QStringLiteral("identify")});
        ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_TRUE(run.out.contains(QStringLiteral("system: 17.03.09 10:42 (2009-03-17T10:42:00)\n")))
            << locale << '\n'
            << run.out.toStdString();
        EXPECT_TRUE(run.out.contains(QStringLiteral("help: 05.02.09 09:30 (2009-02-05T09:30:00)\n")))
            << locale << '\n'
            << run.out.toStdString();
    }
    if (previous.isNull())
        qunsetenv("LC_ALL");
    else
        qputenv("LC_ALL", previous);
    EXPECT_TRUE(run.out.contains(QStringLiteral("version: KYM QRT4027  Firmware V 2.10\n")))
        << run.out.toStdString();
    EXPECT_TRUE(run.out.contains(QStringLiteral("accessory: in front\n"))) << run.out.toStdString();
}

TEST(CliEndToEnd, PortComesFromTheSettingsFileOfTheCurrentDirectory)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult run =
        RunWithSettings(sim.pty().toLocal8Bit() + ";port of the bench tester\r\n1\r\ndeutsch\r\n",
                        {QStringLiteral("send"), QStringLiteral("dis?")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.out.startsWith(QStringLiteral("dis? 00.Y"))) << run.out.toStdString();
}

TEST(CliEndToEnd, ASettingsNumberOutOfRangeIsToldAndTheCommandStillRuns)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult run =
        RunWithSettings(sim.pty().toLocal8Bit() + "\r\n&HFFFFFFFFFFFFFFFFFFFF;port number\r\ndeutsch\r\n",
                        {QStringLiteral("send"), QStringLiteral("dis?")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_TRUE(run.err.contains(QStringLiteral("Q417.ini, Zeile 2"))) << run.err.toStdString();
}
