// Calibration backups against the virtual tester: round trip, cancel, time-out, names and drift.
#include "config/Calibration.h"
#include "config/CalibrationDiff.h"
#include "link/Errors.h"
#include "support/SimBench.h"

#include "support/TestFiles.h"
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo;
using config::RestoreSource;
using kalvo::testing::SimBench;

using kalvo::testing::ReadFile;

using kalvo::testing::WriteFile;

namespace {

QList<QByteArray> WithoutSession(QList<QByteArray> lines)
{
    lines.removeAll("idn!99\r");
    lines.removeAll("kal!ein\r");
    lines.removeAll("kal!pgm\r");
    lines.removeAll("kal!aus\r");
    return lines;
}

} // namespace

TEST(Calibration, BackupHasFiftyOneLinesReadWithTheBlankBeforeTheNumber)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("KALVO-01.cal"));
    SimBench s;
    QStringList shown;
    config::BackupCalibration(s.link, s.prompter, path, [&](const QString &line) { shown << line; });
    const QList<QByteArray> sent = s.Lines();
    ASSERT_EQ(sent.size(), 51);
    EXPECT_EQ(sent[0], QByteArray("kal? 0\r"));
    EXPECT_EQ(sent[50], QByteArray("kal? 50\r"));
    const QList<QByteArray> lines = ReadFile(path).split('\n');
    ASSERT_EQ(lines.size(), 52); // 51 lines, each ending in CR LF
    EXPECT_TRUE(lines.last().isEmpty());
    for (int n = 0; n <= 50; ++n) {
        EXPECT_TRUE(lines[n].startsWith(QByteArray::number(n) + ':')) << lines[n].constData();
        EXPECT_TRUE(lines[n].endsWith('\r'));
    }
    EXPECT_EQ(lines[29], QByteArray("29:0,3042.6\r"));
    EXPECT_EQ(shown.size(), 51);
    EXPECT_EQ(shown[29], QStringLiteral("29:0,3042.6"));
}

TEST(Calibration, BackupRestoreBackupRoundTripGivesTheSameFile)
{
    QTemporaryDir dir;
    const QString first = dir.filePath(QStringLiteral("a.cal"));
    const QString second = dir.filePath(QStringLiteral("b.cal"));
    SimBench source;
    // Values of every shape the tester reports: negative, long decimals, integers.
    source.tester.model().working().calibration[7] = {"-12", "0.99871"};
    source.tester.model().working().calibration[8] = {"123456", "7"};
    config::BackupCalibration(source.link, source.prompter, first);

    SimBench target; // another tester, with its own default values
    target.tester.model().working().calibration[7] = {"0", "1"};
    target.prompter.confirmAnswers = {true};
    const auto result =
        config::RestoreCalibration(target.link, target.prompter, first, RestoreSource::ServiceForm);
    EXPECT_EQ(result.entriesWritten, 51);
    EXPECT_TRUE(result.stored);
    const QList<QByteArray> sent = target.Lines();
    ASSERT_EQ(sent.size(), 2 + 102 + 2);
    EXPECT_EQ(sent.mid(0, 2), (QList<QByteArray>{"idn!99\r", "kal!ein\r"}));
    EXPECT_EQ(sent.mid(16, 2), (QList<QByteArray>{"wer! 7,-12\r", "wer! 7,0.99871\r"}));
    EXPECT_EQ(sent.mid(104), (QList<QByteArray>{"kal!pgm\r", "kal!aus\r"}));
    EXPECT_EQ(target.prompter.calls.filter(QStringLiteral("confirm:speichern??")).size(), 1);

    target.Restart(); // stored: survives
    target.tester.model().working() = target.tester.model().stored();
    config::BackupCalibration(target.link, target.prompter, second);
    EXPECT_EQ(ReadFile(second), ReadFile(first));
}

TEST(Calibration, CancelledRestoreSendsNoStoreButLeavesCalibrationModeAndIsLostOnRestart)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("x.cal"));
    WriteFile(path, "3:5,1.0500\r\n\r\n4:6,1.0600\r\n");
    SimBench s;
    const auto before = s.tester.model().stored().calibration;
    s.prompter.confirmAnswers = {false};
    const auto result = config::RestoreCalibration(s.link, s.prompter, path, RestoreSource::ServiceForm);
    EXPECT_FALSE(result.stored);
    EXPECT_EQ(s.Lines(), (QList<QByteArray>{"idn!99\r", "kal!ein\r", "wer! 3,5\r", "wer! 3,1.0500\r",
                                            "wer! 4,6\r", "wer! 4,1.0600\r", "kal!aus\r"}));
    EXPECT_EQ(s.tester.model().working().calibration[3], (sim::TesterState::Calibration{"5", "1.0500"}));
    s.Restart();
    EXPECT_EQ(s.tester.model().working().calibration, before);
}

TEST(Calibration, SkipRulesOfTheTwoForms)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("x.cal"));
    WriteFile(path, "Kalvomer 9000 Kalibrierwerte\r\n\r\nOptionen: keine\r\n   \r\n2:1,2\r\n");
    const struct {
        RestoreSource source;
        bool throws;
    } cases[] = {{RestoreSource::MainForm, false}, {RestoreSource::ServiceForm, true}};
    for (const auto &c : cases) {
        SimBench s;
        s.prompter.confirmAnswers = {true};
        QStringList shown;
        if (c.throws) {
            // A heading line is no entry on the service form: nothing is sent at all.
            EXPECT_THROW(config::RestoreCalibration(s.link, s.prompter, path, c.source), link::FormatError);
            EXPECT_TRUE(s.Lines().isEmpty());
            continue;
        }
        config::RestoreCalibration(s.link, s.prompter, path, c.source, [&](const QString &l) { shown << l; });
        EXPECT_EQ(WithoutSession(s.Lines()), (QList<QByteArray>{"wer! 2,1\r", "wer! 2,2\r"}));
        EXPECT_EQ(shown.size(), 5); // every line is shown, skipped ones too
    }
}

TEST(Calibration, MalformedOrMissingFileSendsNothing)
{
    QTemporaryDir dir;
    const struct {
        const char *name;
        QByteArray text;
        int line;
    } cases[] = {
        {"no colon", "1:2,3\r\n2;4,5\r\n", 2},
        {"comma before colon", "1,2:3\r\n", 1},
        {"no number", "x:2,3\r\n", 1},
    };
    for (const auto &c : cases) {
        const QString path = dir.filePath(QStringLiteral("bad.cal"));
        WriteFile(path, c.text);
        SimBench s;
        try {
            config::RestoreCalibration(s.link, s.prompter, path, RestoreSource::MainForm);
            ADD_FAILURE() << c.name;
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.message().contains(QStringLiteral("bad.cal"))) << e.message().toStdString();
            EXPECT_TRUE(e.message().contains(QString::number(c.line))) << e.message().toStdString();
        }
        EXPECT_TRUE(s.Lines().isEmpty()) << c.name;
    }
    SimBench s;
    EXPECT_THROW(config::RestoreCalibration(s.link, s.prompter, dir.filePath(QStringLiteral("none.cal")),
                                            RestoreSource::MainForm),
                 link::FormatError);
    EXPECT_TRUE(s.Lines().isEmpty());
}

TEST(Calibration, FailedBackupKeepsThePreviousFileByteForByte)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("KALVO-01.cal"));
    const QByteArray previous = "0:1,2\r\nold file\r\n";
    const struct {
        const char *fault;
        bool timeout;
    } cases[] = {{"silence:kal? 20", true}, {"noterminator:kal? 20", true}, {"refuse:kal? 20", false}};
    for (const auto &c : cases) {
        WriteFile(path, previous);
        SimBench s;
        ASSERT_TRUE(s.tester.faults().add(QString::fromLatin1(c.fault)));
        if (c.timeout) {
            EXPECT_THROW(config::BackupCalibration(s.link, s.prompter, path), link::Timeout) << c.fault;
        } else {
            EXPECT_THROW(config::BackupCalibration(s.link, s.prompter, path), link::FormatError) << c.fault;
        }
        EXPECT_EQ(ReadFile(path), previous) << c.fault;
        EXPECT_EQ(s.Lines().size(), 21) << c.fault; // stopped at "kal? 20"
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"KALVO-01.cal"}) << c.fault;
        ASSERT_FALSE(s.prompter.messages.empty());
        EXPECT_TRUE(s.prompter.messages.back().text.contains(QStringLiteral("unverändert"))) << c.fault;
    }
}

TEST(Calibration, BackupNames)
{
    EXPECT_EQ(config::DefaultBackupName("KALVO-01"), QStringLiteral("KALVO-01.cal"));
    EXPECT_EQ(config::DefaultBackupName("AB/CD   "), QStringLiteral("AB_CD.cal"));
    const struct {
        QByteArray serial;
        const char *name; // Latin-1
    } cases[] = {
        {"0471 1203 5567", "0471120.567"},  // 12 characters without blanks
        {"0471 1203 55678", "0471120.678"}, // more than 12
        {"0471 1203 556", "04711203.cal"},  // 11: the first 8
        {"1234", "1234.cal"},
        {"", ".cal"},
        {"12\xFF\xFF\xFF \xFF\xFF\xFF", "error"}, // erased: six 0xFF once the blank is gone
        {"\xFF\xFF\xFF\xFF\xFF", "\xFF\xFF\xFF\xFF\xFF.cal"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(config::SerialBackupName(c.serial), QString::fromLatin1(c.name)) << c.serial.constData();
}

TEST(Calibration, DiffListsChangedEntriesWithTheirRelativeChange)
{
    QTemporaryDir dir;
    const QString a = dir.filePath(QStringLiteral("a.cal"));
    const QString b = dir.filePath(QStringLiteral("b.cal"));
    WriteFile(a, "0:5,1.0000\r\n1:0,2000\r\n2:3,4\r\n3:7,8\r\n");
    WriteFile(b, "Kalvomer 9000\r\n0:5,1.0100\r\n1:4,1900\r\n2:3,4\r\n4:1,1\r\n");
    const QList<config::CalibrationDifference> diff = config::DiffCalibration(a, b);
    ASSERT_EQ(diff.size(), 4);
    EXPECT_EQ(diff[0].entry, 0);
    EXPECT_FALSE(diff[0].changed[0]);
    ASSERT_TRUE(diff[0].percent[1]);
    EXPECT_NEAR(*diff[0].percent[1], 1.0, 1e-9);
    EXPECT_EQ(diff[1].entry, 1);
    EXPECT_FALSE(diff[1].percent[0]); // from zero: no percentage
    EXPECT_NEAR(*diff[1].percent[1], -5.0, 1e-9);
    EXPECT_EQ(diff[2].entry, 3); // only in the older file
    EXPECT_TRUE(diff[2].after[0].isEmpty());
    EXPECT_EQ(diff[3].entry, 4); // only in the newer file
    EXPECT_EQ(config::DescribeDifference(diff[0]), QStringLiteral("0: b 1.0000 -> 1.0100 (+1.00 %)"));
    EXPECT_EQ(config::DescribeDifference(diff[1]), QStringLiteral("1: a 0 -> 4, b 2000 -> 1900 (-5.00 %)"));
    EXPECT_TRUE(config::DiffCalibration(a, a).isEmpty());
}
