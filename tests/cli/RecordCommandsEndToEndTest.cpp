// kalvo-cli records, report, kym and csv against kalvo-sim over a pseudo-terminal.
#include "support/SimProcess.h"

#include "support/TestFiles.h"
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo::testing;

namespace {

const QByteArray kOldFile = "PALT;M\x81ller;\xfc;$FF\r\n";

// "P" + fields 1..74 (`fields` first, the rest empty) + ";$FF".
QByteArray Record(const QList<QByteArray> &fields)
{
    QByteArray text = "P";
    for (int i = 0; i < 74; ++i)
        text += fields.value(i) + ';';
    return text + "$FF\r\n";
}

const QByteArray kCode = "00000010000050000000000000000501";

} // namespace

TEST(CliRecordCommands, ReadAllAsksForEachPartOfEveryRecordAndWritesOneLineEach)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("alle.txt"));
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    const RunResult run = RunCli(sim, {QStringLiteral("records"), QStringLiteral("read-all"), file});
    ASSERT_EQ(run.exitCode, 0) << run.err.toStdString();

    QList<QByteArray> lines = ReadFile(file).split('\n');
    ASSERT_EQ(lines.takeLast(), QByteArray()); // the file ends with a line end
    ASSERT_FALSE(lines.isEmpty());
    // Records that go into the archive carry the tester's name and serial number: it is identified
    // first.
    QStringList expected{QStringLiteral("dis?\\r"), QStringLiteral("ver?\\r"), QStringLiteral("idn?\\r"),
                         QStringLiteral("prx?n\\r")};
    for (qsizetype i = 1; i <= lines.size(); ++i) {
        EXPECT_TRUE(lines[i - 1].endsWith(";$FF\r")) << lines[i - 1].constData();
        EXPECT_EQ(lines[i - 1].count(';'), 74) << "record " << i;
        for (const char *part : {"x", "y", "z"})
            expected << QStringLiteral("prx?%1%2\\r").arg(i).arg(QLatin1String(part));
    }
    EXPECT_EQ(sim.ReceivedBytes(), expected);

    // The file just written makes reports without a tester, one page per record.
    const RunResult report = RunProgram(QStringLiteral("kalvo-cli"), {QStringLiteral("report"), file});
    EXPECT_EQ(report.exitCode, 0) << report.err.toStdString();
    EXPECT_EQ(report.out.count(QStringLiteral("Prüfvorschrift:   ")), lines.size());
    EXPECT_EQ(report.out.count(QStringLiteral("\f\r\n")), lines.size() - 1);

    const QString csv = dir.filePath(QStringLiteral("alle.csv"));
    const RunResult exported = RunProgram(QStringLiteral("kalvo-cli"), {QStringLiteral("csv"), file, csv});
    EXPECT_EQ(exported.exitCode, 0) << exported.err.toStdString();
    const QList<QByteArray> rows = ReadFile(csv).split('\n');
    ASSERT_GE(rows.size(), 2);
    EXPECT_TRUE(rows[0].startsWith(";Pr\xfc"
                                   "fer;Messstring;"))
        << rows[0].constData();
    // The header, then a row a record, each row ending behind the next record's first character:
    // the last "$FF" has none behind it.
    ASSERT_EQ(rows.size(), 1 + lines.size());
    for (qsizetype i = 1; i < rows.size() - 1; ++i)
        EXPECT_TRUE(rows[i].endsWith("$FFP\r")) << rows[i].constData();
    EXPECT_TRUE(rows.last().endsWith(";$FF")) << rows.last().constData();
}

TEST(CliRecordCommands, EmptyStoreAndUsageErrorsHaveTheirExitCodes)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("alle.txt"));
    const struct {
        QStringList simArguments;
        QStringList arguments;
        int exitCode;
        QString err;
    } cases[] = {
        {{QStringLiteral("--records"), QStringLiteral("0")},
         {QStringLiteral("records"), QStringLiteral("read-all"), file},
         1,
         QStringLiteral("No Protokol")},
        {{},
         {QStringLiteral("records"), QStringLiteral("show"), QStringLiteral("1"),
          QStringLiteral("--template"), QStringLiteral("7")},
         2,
         QStringLiteral("--template")},
        {{}, {QStringLiteral("records"), QStringLiteral("sideways")}, 2, QStringLiteral("read-all FILE")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        SimProcess sim(c.simArguments);
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(c.err)) << run.err.toStdString();
        EXPECT_FALSE(QFile::exists(file));
    }
}

TEST(CliRecordCommands, RecordsBecomeReportsAPdfAndACsvWithoutTheTester)
{
    SimProcess sim;
    ASSERT_TRUE(sim.started());
    QTemporaryDir dir;
    const QString records = dir.filePath(QStringLiteral("alle.txt"));
    ASSERT_EQ(RunCli(sim, {QStringLiteral("records"), QStringLiteral("read-all"), records}).exitCode, 0);
    const int count = ReadFile(records).count("$FF\r\n");
    ASSERT_GT(count, 10);

    const QString pdf = dir.filePath(QStringLiteral("berichte.pdf"));
    const RunResult report = RunProgram(QStringLiteral("kalvo-cli"),
                                        {QStringLiteral("report"), records, QStringLiteral("--pdf"), pdf});
    ASSERT_EQ(report.exitCode, 0) << report.err.toStdString();
    const QString text = PdfText(pdf).value_or(QString());
    // Every record's report, each beginning on a page of its own.
    EXPECT_EQ(text.count(QStringLiteral("Prüfvorschrift:")), count) << text.left(300).toStdString();
    EXPECT_EQ(text.count(QStringLiteral("Grenzwerte:")), count);
    EXPECT_TRUE(text.contains(QStringLiteral("Wasserkocher")));

    const QString csv = dir.filePath(QStringLiteral("export.csv"));
    const RunResult export_ = RunProgram(QStringLiteral("kalvo-cli"), {QStringLiteral("csv"), records, csv});
    ASSERT_EQ(export_.exitCode, 0) << export_.err.toStdString();
    const QList<QByteArray> rows = ReadFile(csv).split('\n');
    EXPECT_EQ(rows.size(), 1 + count); // the header, a row a record; nothing follows the last "$FF"
}

TEST(CliRecordCommands, ARefusalAnywhereExitsOneAndLeavesTheOldFileByteForByte)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("alt.txt"));
    const struct {
        QStringList simArguments;
        QStringList arguments;
        const char *refused;
        const char *stillAsked; // a command sent after the refusal, as the tester's order has it
    } cases[] = {
        {{QStringLiteral("--fault"), QStringLiteral("refuse:prx?3y")},
         {QStringLiteral("records"), QStringLiteral("read-all"), file},
         "prx?3y",
         "prx?4z\\r"},
        {{QStringLiteral("--fault"), QStringLiteral("refuse:prx?x")},
         {QStringLiteral("records"), QStringLiteral("current"), file},
         "prx?x",
         "prx?z\\r"},
        {{QStringLiteral("--fault"), QStringLiteral("refuse:prx?nx")},
         {QStringLiteral("records"), QStringLiteral("list")},
         "prx?nx",
         nullptr},
        {{QStringLiteral("--kym"), QStringLiteral("--fault"), QStringLiteral("refuse:wer?")},
         {QStringLiteral("kym"), QStringLiteral("read"), file},
         "wer?",
         nullptr},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.arguments.join(' ').toStdString());
        WriteFile(file, kOldFile);
        WriteFile(dir.filePath(QStringLiteral("proto.txt")), kOldFile);
        SimProcess sim(c.simArguments);
        ASSERT_TRUE(sim.started());
        const RunResult run = RunCli(sim, c.arguments, dir.path());
        EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QStringLiteral("abgelehnt"))) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QLatin1String(c.refused))) << run.err.toStdString();
        EXPECT_EQ(ReadFile(file), kOldFile);
        EXPECT_EQ(ReadFile(dir.filePath(QStringLiteral("proto.txt"))), kOldFile);
        if (c.stillAsked)
            EXPECT_TRUE(sim.ReceivedBytes().contains(QLatin1String(c.stillAsked)));
    }
}

TEST(CliRecordCommands, FilesFarTooLargeAreRefusedWithTheirSize)
{
    QTemporaryDir dir;
    const QString big = dir.filePath(QStringLiteral("riesig.txt"));
    const QString csv = dir.filePath(QStringLiteral("export.csv"));
    ASSERT_TRUE(MakeLargeFile(big, qint64(100) * 1024 * 1024));
    WriteFile(csv, kOldFile);
    for (const QStringList &arguments :
         {QStringList{QStringLiteral("report"), big}, QStringList{QStringLiteral("csv"), big, csv}}) {
        SCOPED_TRACE(arguments.first().toStdString());
        const RunResult run = RunProgram(QStringLiteral("kalvo-cli"), arguments);
        EXPECT_EQ(run.exitCode, 1) << run.err.toStdString();
        EXPECT_TRUE(run.err.contains(QStringLiteral("100.0 MiB"))) << run.err.toStdString();
        EXPECT_TRUE(run.out.isEmpty());
    }
    EXPECT_EQ(ReadFile(csv), kOldFile);
}

TEST(CliRecordCommands, ReportsShowFieldsWholeInEitherByteFormAndThePdfCarriesALongFieldWhole)
{
    QTemporaryDir dir;
    const QString file = dir.filePath(QStringLiteral("gemischt.txt"));
    QByteArray repair;
    for (int i = 1; i <= 1500; ++i)
        repair += QByteArray::number(i).rightJustified(5, '0') + '-';
    QList<QByteArray> raw(74);
    raw[0] = "KALVO";
    raw[1] = kCode;
    raw[2] = "#12 @Werk";
    raw[54] = "18.03.09";
    raw[60] = "M\x81ller";
    QList<QByteArray> windows = raw;
    windows[60] = "M\xfcller";
    windows[64] = repair;
    WriteFile(file, Record(raw) + Record(windows));

    const RunResult report = RunProgram(QStringLiteral("kalvo-cli"), {QStringLiteral("report"), file});
    ASSERT_EQ(report.exitCode, 0) << report.err.toStdString();
    EXPECT_EQ(report.out.count(QStringLiteral("Name    \tMüller\r\n")), 2) << report.out.toStdString();
    EXPECT_EQ(report.out.count(QStringLiteral("ID_Nr:          #12 @Werk\r\n")), 2);
    EXPECT_TRUE(report.out.contains(QString::fromLatin1(repair)));

    const QString pdf = dir.filePath(QStringLiteral("bericht.pdf"));
    const RunResult printed = RunProgram(QStringLiteral("kalvo-cli"),
                                         {QStringLiteral("report"), file, QStringLiteral("--pdf"), pdf});
    ASSERT_EQ(printed.exitCode, 0) << printed.err.toStdString();
    QString text = PdfText(pdf, {QStringLiteral("-layout")}).value_or(QString());
    EXPECT_EQ(text.count(QStringLiteral("Müller")), 2);
    // The long line is carried on over the next lines and pages; none of it is lost.
    text.remove(QLatin1Char('\n')).remove(QLatin1Char('\f'));
    EXPECT_TRUE(text.contains(QString::fromLatin1(repair))) << text.right(400).toStdString();
}
