// kalvo-cli vars, limits, cal and modem against kalvo-sim over a pseudo-terminal: the exact bytes sent.
#include "support/SimProcess.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace kalvo::testing;

namespace {

QStringList CalibrationReads()
{
    QStringList lines;
    for (int n = 0; n <= 50; ++n)
        lines << QStringLiteral("kal? %1\\r").arg(n);
    return lines;
}

} // namespace

TEST(CliConfigCommands, BackupThenRestoreWithStoreSendsTheEntriesBack)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("t.cal"));
    const RunResult backup = RunCli(sim, {QStringLiteral("cal"), QStringLiteral("backup"), path});
    ASSERT_EQ(backup.exitCode, 0) << backup.err.toStdString();
    EXPECT_EQ(sim.ReceivedBytes(), CalibrationReads());
    const QList<QByteArray> lines = ReadFile(path).split('\n');
    ASSERT_EQ(lines.size(), 52);
    EXPECT_TRUE(lines[3].startsWith("3:")); // entry numbers in order
    EXPECT_EQ(lines[29], QByteArray("29:0,3042.6\r"));

    const RunResult restore =
        RunCli(sim, {QStringLiteral("cal"), QStringLiteral("restore"), path, QStringLiteral("--store")});
    ASSERT_EQ(restore.exitCode, 0) << restore.err.toStdString();
    const QStringList sent = sim.ReceivedBytes().mid(51);
    ASSERT_EQ(sent.size(), 2 + 102 + 2);
    EXPECT_EQ(sent.mid(0, 2), (QStringList{"idn!99\\r", "kal!ein\\r"}));
    const QByteArray three = lines[3].trimmed();
    const qsizetype colon = three.indexOf(':'), comma = three.indexOf(',');
    EXPECT_EQ(
        sent[8],
        QStringLiteral("wer! 3,%1\\r").arg(QString::fromLatin1(three.mid(colon + 1, comma - colon - 1))));
    EXPECT_EQ(sent[9], QStringLiteral("wer! 3,%1\\r").arg(QString::fromLatin1(three.mid(comma + 1))));
    EXPECT_EQ(sent[60], QStringLiteral("wer! 29,0\\r"));
    EXPECT_EQ(sent[61], QStringLiteral("wer! 29,3042.6\\r"));
    EXPECT_EQ(sent.mid(104), (QStringList{"kal!pgm\\r", "kal!aus\\r"}));
}

TEST(CliConfigCommands, RestoreWithoutStoreAnswersCancelAndBackupNamesTheFileAfterTheTester)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    QTemporaryDir dir;
    const RunResult backup = RunCli(sim, {QStringLiteral("cal"), QStringLiteral("backup")}, dir.path());
    ASSERT_EQ(backup.exitCode, 0) << backup.err.toStdString();
    EXPECT_EQ(sim.ReceivedBytes(), QStringList({"dis?\\r", "ver?\\r", "idn?\\r"}) + CalibrationReads());
    const QString path = dir.filePath(QStringLiteral("KALVO-01.cal"));
    ASSERT_TRUE(QFile::exists(path));

    const RunResult restore = RunCli(sim, {QStringLiteral("cal"), QStringLiteral("restore"), path});
    ASSERT_EQ(restore.exitCode, 0) << restore.err.toStdString();
    const QStringList sent = sim.ReceivedBytes();
    EXPECT_FALSE(sent.contains(QStringLiteral("kal!pgm\\r")));
    EXPECT_EQ(sent.last(), QStringLiteral("kal!aus\\r"));
    EXPECT_TRUE(restore.err.contains(QStringLiteral("speichern??"))) << restore.err.toStdString();
}

TEST(CliConfigCommands, LimitSetSendsTheTestersFormAndRefusesOutOfRangeBeforeSending)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult set = RunCli(sim, {QStringLiteral("limits"), QStringLiteral("set"),
                                       QStringLiteral("kuschl"), QStringLiteral("15")});
    ASSERT_EQ(set.exitCode, 0) << set.err.toStdString();
    EXPECT_EQ(sim.ReceivedBytes(), QStringList{"wer!bgwkuschl_ea<015.0 mA\\r"});
    const RunResult get =
        RunCli(sim, {QStringLiteral("limits"), QStringLiteral("get"), QStringLiteral("kuschl")});
    EXPECT_EQ(get.out, QStringLiteral("kuschl_ea 15 mA\n"));
    const RunResult out = RunCli(sim, {QStringLiteral("limits"), QStringLiteral("set"),
                                       QStringLiteral("kuschl"), QStringLiteral("14")});
    EXPECT_EQ(out.exitCode, 2);
    EXPECT_EQ(sim.ReceivedBytes().size(), 2); // nothing more was sent
}

TEST(CliConfigCommands, VariablesAreReadByNameDumpedAndStored)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult read =
        RunCli(sim, {QStringLiteral("vars"), QStringLiteral("read"), QStringLiteral("VMITBEZ")});
    ASSERT_EQ(read.exitCode, 0) << read.err.toStdString();
    EXPECT_TRUE(read.out.contains(QStringLiteral("0000 0001"))) << read.out.toStdString();
    const RunResult dump = RunCli(sim, {QStringLiteral("vars"), QStringLiteral("dump")});
    ASSERT_EQ(dump.exitCode, 0);
    EXPECT_EQ(dump.out.count(QLatin1Char('\n')), 48);
    EXPECT_EQ(RunCli(sim, {QStringLiteral("vars"), QStringLiteral("store")}).exitCode, 0);

    QStringList expected{"var?D3\\r"};
    for (int address = 0xD0; address <= 0xFF; ++address)
        expected << QStringLiteral("var?") + QString::number(address, 16).toUpper() + QStringLiteral("\\r");
    expected << QStringLiteral("cfg!pgm\\r");
    EXPECT_EQ(sim.ReceivedBytes(), expected);
}

TEST(CliConfigCommands, ModemSettingsGoToTheFiveStringRegistersAndAreStored)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult run =
        RunCli(sim, {QStringLiteral("modem"), QStringLiteral("set"), QStringLiteral("--tel1"),
                     QStringLiteral("0711 4711"), QStringLiteral("--tel2"), QString(),
                     QStringLiteral("--init"), QStringLiteral("AT&F"), QStringLiteral("--store")});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();
    // Nothing but the five writes and the store: the tester cannot be asked for the registers.
    EXPECT_EQ(sim.ReceivedBytes(), (QStringList{"str!121,\\r", "str!122,0711 4711\\r", "str!123,\\r",
                                                "str!124,\\r", "str!125,AT&F\\r", "cfg!pgm\\r"}));
}

// A write session that met a refusal stores nothing, whatever --store says, and ends with exit 1;
// nor does anything go on after a refused identification, though a later "dis?" was answered.
TEST(CliConfigCommands, ARefusalIsNamedAndNothingIsStoredOrWritten)
{
    QTemporaryDir dir;
    const QString cal = dir.filePath(QStringLiteral("t.cal"));
    WriteFile(cal, "4:1,2\r\n5:3,4\r\n6:5,6\r\n");
    const struct {
        const char *fault;
        QStringList words;
        const char *named;
        const char *notSent;
    } cases[] = {
        {"refuse:wer! 5", {"cal", "restore", cal, "--store"}, "wer! 5,3", "kal!pgm\\r"},
        {"refusestore:wer! 5", {"--yes", "cal", "restore", cal, "--store"}, "wer! 5,3", "kal!pgm\\r"},
        {"refuse:str!123", {"modem", "set", "--tel2", "1", "--store"}, "str!123,1", "cfg!pgm\\r"},
        {"refusestore:cfg!pgm", {"modem", "set", "--store"}, "nicht gespeichert", nullptr},
        {"refuse:dis?x1", {"name", "NEU-1"}, "Identstring fehlerhaft", "kal!aus\\r"},
        {"refuse:dis?x1", {"cal", "backup"}, "Identstring fehlerhaft", "kal? 0\\r"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.fault);
        SimProcess sim({QStringLiteral("--fault"), QString::fromLatin1(c.fault)});
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, c.words, dir.path());
        EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QString::fromLatin1(c.named))) << run.err.toStdString();
        if (c.notSent)
            EXPECT_FALSE(sim.ReceivedBytes().contains(QString::fromLatin1(c.notSent)));
    }
    // The backup named after the tester was not written.
    EXPECT_EQ(QDir(dir.path()).entryList({QStringLiteral("*.cal")}), QStringList{QStringLiteral("t.cal")});
}
