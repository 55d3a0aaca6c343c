// kalvo-cli clock, name and script against kalvo-sim over a pseudo-terminal.
#include "support/SimProcess.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::testing;

namespace {} // namespace

TEST(CliShellCommands, NameIdentifiesFirstLikeTheWindowAndShowsTheNewName)
{
    {
        SimProcess sim;
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, {QStringLiteral("name"), QStringLiteral("ABCDEFGH")});
        EXPECT_EQ(run.exitCode, 0) << run.err.toStdString();
        EXPECT_EQ(sim.ReceivedBytes(), (QStringList{"dis?\\r", "ver?\\r", "idn?\\r", "kal!aus\\r",
                                                    "idn!1,ABCDEFGH\\r", "cfg!pgm\\r"}));
        EXPECT_EQ(run.out, QStringLiteral("before: KALVO-01\nname: ABCDEFGH\n"));
    }
    {
        // The tester does not store: the name it keeps is shown, and the run fails.
        SimProcess sim({QStringLiteral("--fault"), QStringLiteral("refusestore:cfg!pgm")});
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, {QStringLiteral("name"), QStringLiteral("ABCDEFGH")});
        EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
        EXPECT_EQ(run.out, QStringLiteral("before: KALVO-01\nname: KALVO-01\n"));
        EXPECT_TRUE(run.err.contains(QStringLiteral("nicht gespeichert"))) << run.err.toStdString();
    }
    {
        SimProcess sim;
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, {QStringLiteral("--lang"), QStringLiteral("englisch"),
                                           QStringLiteral("name"), QStringLiteral("ABCDEFGHI")});
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(QStringLiteral("too long"))) << run.err.toStdString();
        EXPECT_TRUE(sim.ReceivedBytes().isEmpty());
    }
}

// As in the window, the tester's display language becomes the program's once it is identified; a
// language given with --lang stays.
TEST(CliShellCommands, AfterIdentifyingTheMessagesSpeakTheTestersLanguage)
{
    const struct {
        QStringList simArguments, arguments;
        const char *message; // the refusal of the name in the language of the run
    } cases[] = {
        {{"--language", "1"}, {"name", "NEU-1"}, "The Kalvomer did not accept the command"},
        {{"--language", "3"}, {"name", "NEU-1"}, "Le Kalvomer n'a pas accept"},
        {{"--language", "1"},
         {"--lang", "deutsch", "name", "NEU-1"},
         "Der Kalvomer hat den Befehl nicht angenommen"},
        {{"--language", "0"},
         {"--lang", "englisch", "name", "NEU-1"},
         "The Kalvomer did not accept the command"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString() + " against " +
                     c.simArguments.join(' ').toStdString());
        SimProcess sim(c.simArguments +
                       QStringList{QStringLiteral("--fault"), QStringLiteral("refuse:idn!1")});
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, c.arguments);
        EXPECT_EQ(run.exitCode, 1);
        EXPECT_TRUE(run.err.contains(QString::fromUtf8(c.message))) << run.err.toStdString();
    }
}

TEST(CliShellCommands, ClockPrintsTheTestersTimeAndSendsThePcsOrTheGivenText)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult pc = RunCli(sim, {QStringLiteral("clock")});
    ASSERT_EQ(pc.exitCode, 0) << pc.err.toStdString();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^tester: \\d\\d\\.\\d\\d\\.\\d\\d \\d\\d:\\d\\d:\\d\\d\n"))
                    .match(pc.out)
                    .hasMatch())
        << pc.out.toStdString();
    // Sent as typed, even without the ";" the tester expects; the tester refuses it, and so the
    // command fails.
    const RunResult given = RunCli(sim, {QStringLiteral("clock"), QStringLiteral("01.02.26 08:00")});
    EXPECT_EQ(given.exitCode, 1);
    EXPECT_TRUE(given.err.contains(QStringLiteral("dat!01.02.26 08:00"))) << given.err.toStdString();
    const QStringList lines = sim.ReceivedBytes();
    ASSERT_EQ(lines.size(), 4);
    EXPECT_EQ(lines[0], QStringLiteral("dat?\\r"));
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^dat!\\d\\d\\.\\d\\d\\.\\d\\d;\\d\\d:\\d\\d\\\\r$"))
                    .match(lines[1])
                    .hasMatch())
        << lines[1].toStdString();
    EXPECT_EQ(lines[3], QStringLiteral("dat!01.02.26 08:00\\r"));
}

TEST(CliShellCommands, ScriptWritesItsResultBesideOrWhereAsked)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    QTemporaryDir dir;
    QFile script(dir.filePath(QStringLiteral("beispiel.abl")));
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("wer?WC;Schutzleiter\r\nvar?D3\r\n");
    script.close();

    const RunResult run = RunCli(sim, {QStringLiteral("script"), QStringLiteral("beispiel.abl")}, dir.path());
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    EXPECT_EQ(run.out, QStringLiteral("wer?WC;Schutzleiter\nvar?D3\n"));
    QFile result(dir.filePath(QStringLiteral("beispiel.txt")));
    ASSERT_TRUE(result.open(QIODevice::ReadOnly));
    const QByteArray text = result.readAll();
    EXPECT_TRUE(text.startsWith(";Schutzleiter\r\nwer?WC;Schutzleiter Wertx=")) << text.constData();

    const RunResult elsewhere =
        RunCli(sim, {QStringLiteral("script"), dir.filePath(QStringLiteral("beispiel.abl")),
                     QStringLiteral("--out"), dir.filePath(QStringLiteral("werte.txt"))});
    EXPECT_EQ(elsewhere.exitCode, 0);
    EXPECT_TRUE(QFile::exists(dir.filePath(QStringLiteral("werte.txt"))));
    EXPECT_EQ(RunCli(sim, {QStringLiteral("script"), dir.filePath(QStringLiteral("none.abl"))}).exitCode, 1);
}
