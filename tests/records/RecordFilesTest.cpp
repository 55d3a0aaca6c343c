// Record files, the CSV export and the tester's print text.
#include "RecordSamples.h"

#include "link/Errors.h"
#include "link/LinkFixture.h"
#include "records/RecordDecoding.h"
#include "records/RecordFiles.h"
#include "records/TesterPrintText.h"

#include "support/TestFiles.h"
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <functional>

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::records;

using kalvo::testing::ReadFile;
using kalvo::testing::ScriptedLink;

using kalvo::testing::WriteFile;

TEST(ExportCsv, BytesFollowTheDollarCountdown)
{
    const struct {
        const char *name;
        QList<QByteArray> entries;
        QString report;
        QByteArray expected;
    } cases[] = {
        {"one record", {"A;B;C;$FFx"}, {}, "H1;H2\r\n;A;B;C;$FFx\r\n"},
        // A record's line end is no character: the row ends behind the next record's first one.
        {"record texts with their line ends",
         {"PA;B;$FF\r\n", "PC;$FF\r\n"},
         {},
         "H1;H2\r\n;PA;B;$FFP\r\nC;$FF"},
        {"line ends of any kind", {"PA;$FF\n", "PB;$FF\r", "PC"}, {}, "H1;H2\r\n;PA;$FFP\r\nB;$FFP\r\nC"},
        {"tester characters become Windows text",
         {"P1\xea;2\xe6;\x81;$FF\r\n", "Q"},
         {},
         "H1;H2\r\n;P1Ohm;2\xb5;\xfc;$FFQ\r\n"},
        // Bytes the conversion leaves alone are written as they are: never "?" nor 0x1A.
        {"other bytes stay bytes",
         {"P\xc4\xb3\x80\xda\xfc\xe4\x9b;$FF\xe1\r\n"},
         {},
         "H1;H2\r\n;P\xc4\xb3\x80\xda\xfc\xe4\x9b;$FF\xdf\r\n"},
        {"a record converted before is not converted again",
         {"KM\xfcller;<0.3Ohm;2\xb5"
          "A;$FFK\r\n"},
         {},
         "H1;H2\r\n;KM\xfcller;<0.3Ohm;2\xb5"
         "A;$FFK\r\n"},
        {"report text beyond Windows-1252 keeps its characters",
         {},
         QStringLiteral("┌─┐ € Ω 漢 #1"),
         "H1;H2\r\n;\xda\xc4\xbf \x80 \xea \xe6\xbc\xa2 1"},
        {"dropped characters still count", {"Px;$F#\x01y"}, {}, "H1;H2\r\n;Px;$F\r\ny"},
        {"empty entry 0 takes the report",
         {"", "PB;$FF\r\n"},
         QStringLiteral("Prüf\tbericht\r\n"),
         "H1;H2\r\n;Pr\xfc"
         "fberichtPB;$FF"},
        {"no entries at all take the report", {}, QStringLiteral("R$12"), "H1;H2\r\n;R$12"},
        {"the report's line ends are not counted either",
         {},
         QStringLiteral("R$1\r\n2x"),
         "H1;H2\r\n;R$12x\r\n"},
        {"twelve entries and more",
         QList<QByteArray>(14, "Pr;$FF\r\n"),
         {},
         "H1;H2\r\n;Pr;$FFP\r\n" + QByteArray("r;$FFP\r\n").repeated(12) + "r;$FF"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(ExportCsv("H1;H2", c.entries, c.report), c.expected);
    }
}

TEST(StoreAccessoryRecords, WithoutTheAccessoryTheTableAndTheReportAreWrittenAsWindowsText)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("kym.txt"));
    ScriptedLink s;
    s.prompter.fileAnswers.push_back(path);
    s.transport.Expect("idn?\r").Reply("idn? KALVOMER 3.10\r\n\x11");
    const auto status =
        StoreAccessoryRecords(s.link, s.prompter, dir.filePath(QStringLiteral("log.tmp")),
                              {"KM\xfcller;$FF\r\n", "KB;$FF"}, QStringLiteral("Prüfer ─ Ω\r\n"));
    EXPECT_EQ(status, StoreStatus::Written);
    EXPECT_EQ(ReadFile(path), "KM\xfcller;$FF\r\nKB;$FF\r\n" + QByteArray("\r\n").repeated(10) +
                                  "Pr\xfc"
                                  "fer \xc4 \xea\r\n");
}

TEST(RecordFiles, FilesFarLargerThanAnyRealOneAreRefusedWithTheirSizeAndWriteNothing)
{
    QTemporaryDir dir;
    const QString big = dir.filePath(QStringLiteral("big.txt"));
    const QString out = dir.filePath(QStringLiteral("out.txt"));
    ASSERT_TRUE(kalvo::testing::MakeLargeFile(big, 100 * 1024 * 1024));
    ScriptedLink s;
    s.prompter.fileAnswers.push_back(out);
    s.transport.Expect("idn?\r").Reply("idn? QRT4027\r\n\x11");
    const struct {
        const char *name;
        std::function<void()> read;
    } cases[] = {
        {"record file", [&] { LoadRecordFile(big); }},
        {"ueber.csv", [&] { ExportCsvFile(out, big, {"PA;$FF\r\n"}, {}); }},
        {"log.tmp", [&] { StoreAccessoryRecords(s.link, s.prompter, big, {}, {}); }},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        WriteFile(out, "older");
        try {
            c.read();
            ADD_FAILURE() << "read";
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.text().contains(QStringLiteral("100.0 MiB"))) << e.text().toStdString();
            EXPECT_TRUE(e.text().contains(QStringLiteral("64.0 MiB"))) << e.text().toStdString();
        }
        EXPECT_EQ(ReadFile(out), QByteArray("older"));
    }

    ASSERT_TRUE(QFile::resize(big, kMaxFileBytes));
    EXPECT_EQ(ReadWholeFile(big).size(), kMaxFileBytes);
    ASSERT_TRUE(QFile::resize(big, kMaxFileBytes + 1));
    EXPECT_THROW(ReadWholeFile(big), link::FormatError);
}

TEST(ExportCsv, HeaderIsTheLastLineOfUeberCsvAndAMissingOneWritesNothing)
{
    QTemporaryDir dir;
    const QString header = dir.filePath(QStringLiteral("ueber.csv"));
    const QString out = dir.filePath(QStringLiteral("out.csv"));
    WriteFile(header, "; comment\r\n;Pr\xfc"
                      "fer;Messstring\r\n\r\n");
    ExportCsvFile(out, header, {"PKALVO;" + kalvo::testing::CodeString('1', '5') + ";$FF\r\n"}, {});
    EXPECT_EQ(ReadFile(out), ";Pr\xfc"
                             "fer;Messstring\r\n;PKALVO;" +
                                 kalvo::testing::CodeString('1', '5') + ";$FF");

    WriteFile(out, "yesterday");
    EXPECT_THROW(ExportCsvFile(out, dir.filePath(QStringLiteral("none.csv")), {"Px;$FF\r\n"}, {}),
                 link::FormatError);
    EXPECT_EQ(ReadFile(out), QByteArray("yesterday"));
}

TEST(ExportCsv, ShippedHeaderNamesEveryDecodedColumnInOrder)
{
    const QByteArray header = ReadCsvHeader(QStringLiteral(KALVO_DATA_DIR "/ueber.csv"));
    const QList<QByteArray> columns = header.split(';');
    // The leading empty column stands over the ";" that opens the data line.
    ASSERT_EQ(columns.size(), 1 + 6 + 48 + 20);
    EXPECT_EQ(columns[0], QByteArray());
    EXPECT_EQ(columns[1], QByteArray("Pr\xfc"
                                     "fer"));
    for (int i = 0; i < kMeasurementCount; ++i) {
        EXPECT_EQ(columns[7 + 2 * i], QByteArray(kMeasurementLabels[i].measured).replace(':', "").trimmed());
        EXPECT_EQ(columns[8 + 2 * i].left(3), QByteArray("GW "));
    }
    EXPECT_EQ(columns[55], QByteArray("Datum KYM"));
    EXPECT_EQ(columns[57], QByteArray("Ger\xe4teart"));
    EXPECT_EQ(columns[74], QByteArray("Reparatur 10"));
}

TEST(RecordFiles, RecordsReadBackAsWrittenAndBlankLinesHoldNone)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("records.txt"));
    const QList<QByteArray> records = {
        kalvo::testing::RecordText({{1, "A"}, {8, "<0.3\xea"}}),
        kalvo::testing::RecordText({{1, "B\x81"}}),
    };
    WriteRecordFile(path, records);
    EXPECT_EQ(ReadFile(path), records[0] + records[1]);
    EXPECT_EQ(LoadRecordFile(path), records);

    const struct {
        QByteArray bytes;
        QList<QByteArray> records;
    } cases[] = {
        {"", {}},
        {"\r\n\r\n", {}},
        {"PA;$FF", {"PA;$FF\r\n"}},
        {"PA;$FF\nPB;$FF\r\n\r\nPC;$FF\r\n", {"PA;$FF\r\n", "PB;$FF\r\n", "PC;$FF\r\n"}},
    };
    for (const auto &c : cases) {
        WriteFile(path, c.bytes);
        EXPECT_EQ(LoadRecordFile(path), c.records) << c.bytes.constData();
    }
    EXPECT_THROW(LoadRecordFile(dir.filePath(QStringLiteral("missing.txt"))), link::FormatError);
}

TEST(RecordFiles, AnUnwritableTargetIsSaidAndLeavesNoFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("no/such/folder/records.txt"));
    EXPECT_THROW(WriteRecordFile(path, {"PA;$FF\r\n"}), link::FormatError);
    EXPECT_FALSE(QFile::exists(path));
}

TEST(ExtractPrintText, TextBetweenEnqAndFormFeedWithControlCharactersSorted)
{
    const struct {
        const char *name;
        QByteArray answer;
        QString text;
    } cases[] = {
        {"cut at ENQ and FF",
         "xx\x05"
         "AB\x0cyy",
         QStringLiteral("AB")},
        {"no ENQ: from the start", "AB\x0cyy", QStringLiteral("AB")},
        {"no FF: to the end",
         "prn!1\r\n\x05"
         "AB\r\n",
         QStringLiteral("AB\r\n")},
        {"FF before ENQ is not the end",
         "\x0cxx\x05"
         "AB\x0c",
         QStringLiteral("AB")},
        {"escape dropped, 20 kept",
         "\x05"
         "A\x1b"
         "B\x14"
         "C\x0c",
         QStringLiteral("AB\x14"
                        "C")},
        {"other controls and 255 dropped",
         "\x05"
         "A\x07\x11\x09\xff"
         "B\x0c",
         QStringLiteral("AB")},
        {"codes 21 to 31 dropped",
         "\x05"
         "A\x15\x16\x17\x18\x19\x1a\x1c\x1d\x1e\x1f"
         "B\x0c",
         QStringLiteral("AB")},
        {"box drawing and tester characters",
         "\x05\xda\xc4\xbf\r\n\xb3"
         "5M\xea\xb3\x0c",
         QStringLiteral("┌─┐\r\n│5MOhm│")},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ExtractPrintText(c.answer), c.text) << c.name;
}
