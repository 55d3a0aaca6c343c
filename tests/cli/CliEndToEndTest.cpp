// kalvo-cli against kalvo-sim over a real pseudo-terminal: what it prints and the bytes that reach the
// tester.
#include "support/SilentPty.h"
#include "support/SimProcess.h"

#include <QFile>
#include <QTemporaryDir>
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
    };
    const Case cases[] = {
        {{QStringLiteral("frobnicate")}, 2},
        {{QStringLiteral("--timeout"), QStringLiteral("x"), QStringLiteral("identify")}, 2},
        {{QStringLiteral("--timeout"), QStringLiteral("nan"), QStringLiteral("identify")}, 2},
        {{QStringLiteral("send")}, 2},
        {{QStringLiteral("--port"), QStringLiteral("/dev/kalvo-no-such-port"), QStringLiteral("identify")},
         1},
    };
    for (const Case &c : cases) {
        const RunResult run = RunProgram(QStringLiteral("kalvo-cli"), c.args);
        EXPECT_EQ(run.exitCode, c.exitCode)
            << c.args.join(' ').toStdString() << ": " << run.err.toStdString();
        EXPECT_FALSE(run.err.isEmpty());
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
