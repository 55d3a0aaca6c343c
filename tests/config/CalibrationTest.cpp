// Calibration backups against the virtual tester: round trip, cancel, time-out, names and drift.
#include "config/Calibration.h"
#include "config/CalibrationDiff.h"
#include "link/Errors.h"
#include "support/ScriptedPrompter.h"
#include "support/ScriptedTransport.h"
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
    // Asked with Cancel as the default, saying what is replaced by what.
    const QStringList asked = target.prompter.calls.filter(QStringLiteral("confirmLoss:speichern??\n\n"));
    ASSERT_EQ(asked.size(), 1);
    EXPECT_TRUE(asked[0].endsWith(QStringLiteral("Die gespeicherten Kalibrierwerte des Kalvomer werden durch "
                                                 "51 Einträge aus %1 ersetzt.")
                                      .arg(QDir::toNativeSeparators(first))))
        << asked[0].toStdString();

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
        {"a value that is no number", "1:x,2\r\n", 1},
        {"a second value that is no number", "0:1,2\r\n1:2,3,4\r\n", 2},
        {"an empty value", "1:,2\r\n", 1},
        {"entry 51", "0:1,2\r\n51:1,2\r\n", 2},
        {"a negative entry", "-1:1,2\r\n", 1},
        {"an entry too large for any number", "99999999999:1,2\r\n", 1},
        {"a number with more behind it", "25-6:1,2\r\n", 1},
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
    // Far larger than any backup: refused by its size, not read whole.
    const QString huge = dir.filePath(QStringLiteral("huge.cal"));
    WriteFile(huge, QByteArray(2 * 1024 * 1024, '\n'));
    {
        SimBench s;
        try {
            config::RestoreCalibration(s.link, s.prompter, huge, RestoreSource::MainForm);
            ADD_FAILURE() << "a 2 MB file was read";
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.message().contains(QString::number(2 * 1024 * 1024))) << e.message().toStdString();
        }
        EXPECT_TRUE(s.Lines().isEmpty());
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
    // Names Windows keeps for devices would write to the device instead of a file.
    EXPECT_EQ(config::DefaultBackupName("NUL     "), QStringLiteral("NUL_.cal"));
    EXPECT_EQ(config::DefaultBackupName("com1"), QStringLiteral("com1_.cal"));
    EXPECT_EQ(config::DefaultBackupName("CONSOLE"), QStringLiteral("CONSOLE.cal"));
    const struct {
        QByteArray serial;
        const char *name; // Latin-1
    } cases[] = {
        {"0471 1203 5567", "0471120.567"},  // 12 characters without blanks
        {"0471 1203 55678", "0471120.678"}, // more than 12
        {"0471 1203 556", "04711203.cal"},  // 11: the first 8
        {"1234", "1234.cal"},
        {"AUX", "AUX_.cal"},
        {"LPT9", "LPT9_.cal"},
        {"", ".cal"},
        {"12\xFF\xFF\xFF \xFF\xFF\xFF", "error"}, // erased: six 0xFF once the blank is gone
        {"\xFF\xFF\xFF\xFF\xFF", "\xFF\xFF\xFF\xFF\xFF.cal"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(config::SerialBackupName(c.serial), QString::fromLatin1(c.name)) << c.serial.constData();

    // What the save offers: the designation's name first, the serial number's second.
    const struct {
        QByteArray designation, serial;
        QStringList offered;
    } offers[] = {
        {"KALVO-01", "0471 1203 5567", {"KALVO-01.cal", "0471120.567"}},
        {"KALVO-01", "", {"KALVO-01.cal"}},
        {"        ", "0471 1203 5567", {"0471120.567"}},
        {"", "", {}},
        {"", "   ", {}},
        {"1234", "12 34", {"1234.cal"}}, // the same name once
        {"KALVO-01", "\xFF\xFF\xFF\xFF\xFF\xFF", {"KALVO-01.cal", "error"}},
    };
    for (const auto &o : offers)
        EXPECT_EQ(config::CalibrationBackupNames(o.designation, o.serial), o.offered)
            << o.designation.constData() << "|" << o.serial.constData();
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

namespace {

// A backup from a tester that answers "kal? n" with `answerFor(n)`.
struct ScriptedBackup {
    link::ManualClock clock;
    kalvo::testing::ScriptedTransport transport{clock};
    kalvo::testing::ScriptedPrompter prompter;
    link::Link link{transport, prompter, clock};

    explicit ScriptedBackup(const std::function<QByteArray(int)> &answerFor, int entries = 51)
    {
        for (int n = 0; n < entries; ++n)
            transport.Expect("kal? " + QByteArray::number(n) + '\r').Reply(answerFor(n));
    }
};

} // namespace

TEST(Calibration, BackupTakesTheAnswerFormsATesterMayUseAndKeepsTheirTexts)
{
    const struct {
        const char *name;
        std::function<QByteArray(int)> answer;
        QByteArray line25;
    } cases[] = {
        {"upper-case echo",
         [](int n) {
             return "KAL? " + QByteArray::number(n) + ";" + QByteArray::number(n) + ":0,1.0000.Y\r\n\x11";
         },
         "25:0,1.0000"},
        {"no echo, signed values", [](int n) { return ";" + QByteArray::number(n) + ":-12,+0.99987.Y\x11"; },
         "25:-12,+0.99987"},
        {"blanks around the fields",
         [](int n) {
             return "kal? " + QByteArray::number(n) + "; " + QByteArray::number(n) + ": 3 , 1.5E-3 .Y\x11";
         },
         " 25: 3 , 1.5E-3 "},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("t.cal"));
        ScriptedBackup s(c.answer);
        const QList<QByteArray> lines = config::BackupCalibration(s.link, s.prompter, path);
        ASSERT_EQ(lines.size(), 51);
        EXPECT_EQ(lines[25], c.line25);
        EXPECT_EQ(ReadFile(path).split('\n').value(25), c.line25 + '\r');
        // What was saved can be restored.
        EXPECT_EQ(config::ReadCalibrationFile(path, RestoreSource::ServiceForm).size(), 51);
    }
}

TEST(Calibration, AnAnswerThatCouldNotBeRestoredKeepsThePreviousBackup)
{
    const struct {
        const char *name;
        QByteArray answer25;
    } cases[] = {
        {"a dash for the colon", "kal? 25;25-6,0.9993.Y\x11"},
        {"another entry's number", "kal? 25;26:6,0.9993.Y\x11"},
        {"a value that is no number", "kal? 25;25:6,0.99x3.Y\x11"},
        {"one value only", "kal? 25;25:6.Y\x11"},
        {"no \".Y\"", "kal? 25;25:6,0.9993\x11"},
        {"a refusal", "kal? 25 Protokoll .N\x11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("t.cal"));
        const QByteArray previous = "0:1,2\r\nold\r\n";
        WriteFile(path, previous);
        ScriptedBackup s(
            [&](int n) {
                return n == 25 ? c.answer25
                               : "kal? " + QByteArray::number(n) + ";" + QByteArray::number(n) + ":0,1.Y\x11";
            },
            26);
        try {
            config::BackupCalibration(s.link, s.prompter, path);
            ADD_FAILURE() << "the backup was written";
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.message().contains(QStringLiteral("kal? 25"))) << e.message().toStdString();
        }
        EXPECT_EQ(ReadFile(path), previous);
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}

TEST(Calibration, ARefusedWriteIsNamedInTheQuestionAndNothingIsStoredWithoutAYes)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("x.cal"));
    WriteFile(path, "3:5,1.0500\r\n4:6,1.0600\r\n5:7,1.0700\r\n");
    const struct {
        const char *fault;
        const char *named;
    } cases[] = {{"refuse:wer! 4", "\"wer! 4,6\", \"wer! 4,1.0600\""},
                 {"refusestore:wer! 4", "\"wer! 4,6\", \"wer! 4,1.0600\""}};
    for (const auto &c : cases) {
        for (const bool agree : {false, true}) {
            SCOPED_TRACE(std::string(c.fault) + (agree ? " yes" : " no"));
            SimBench s;
            s.tester.faults().add(QString::fromLatin1(c.fault));
            s.prompter.confirmAnswers = {agree};
            const auto result = config::RestoreCalibration(s.link, s.prompter, path, RestoreSource::MainForm);
            // The session goes on after the refusal: entry 5 is written too.
            EXPECT_EQ(result.entriesWritten, 3);
            EXPECT_EQ(result.refused, (QList<QByteArray>{"wer! 4,6", "wer! 4,1.0600"}));
            const QStringList asked = s.prompter.calls.filter(QStringLiteral("confirmLoss:"));
            ASSERT_EQ(asked.size(), 1);
            EXPECT_TRUE(asked[0].contains(QString::fromLatin1(c.named))) << asked[0].toStdString();
            EXPECT_TRUE(asked[0].contains(config::kStoreQuestion + QStringLiteral("\n\n")));
            EXPECT_EQ(s.Lines().contains("kal!pgm\r"), agree);
            EXPECT_EQ(result.stored, agree);
            EXPECT_EQ(s.Lines().last(), QByteArray("kal!aus\r"));
        }
    }
}
