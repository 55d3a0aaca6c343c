// Reading records from the tester and the accessory: the cut rules on scripted answers, the
// operations against the virtual tester.
#include "RecordSamples.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/LinkFixture.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"
#include "records/TesterPrintText.h"
#include "sim/SimTransport.h"

#include "support/SimBench.h"
#include <QFile>
#include <QTemporaryDir>

#include "support/TestFiles.h"

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::records;
using kalvo::testing::RecordText;
using kalvo::testing::ScriptedLink;

using kalvo::testing::ReadFile;

using kalvo::testing::WriteFile;

namespace {

// Stored form of the virtual tester: no line end.
QByteArray Stored(const QByteArray &id)
{
    QByteArray text = RecordText({{1, "KALVO"}, {2, kalvo::testing::CodeString('1', '5')}, {3, id}});
    text.chop(2);
    return text;
}

QList<QByteArray> ReadAllCommands(int count)
{
    QList<QByteArray> lines{"prx?n\r"};
    for (int i = 1; i <= count; ++i)
        for (const char part : {'x', 'y', 'z'})
            lines << "prx?" + QByteArray::number(i) + part + '\r';
    return lines;
}

} // namespace

TEST(ReadRecord, PartsLoseTheirTrailerAndFillerByEitherRule)
{
    const struct {
        const char *name;
        FillerRule rule;
        QByteArray y;
        QByteArray z;
        QByteArray record;
    } cases[] = {
        {"position", FillerRule::Position, "prx?10y:abcXXXXXXXXdata.\r\n\x11", "prx?10z:12345678ZZ.\r\n\x11",
         "PA;B;C;XXXdataZZ$FF\r\n"},
        {"literal", FillerRule::Literal, "prx?10y:abcXXXXXXXXdata.\r\n\x11", "prx?10z:XXXXXXXXZZ.\r\n\x11",
         "PA;B;C;dataZZ$FF\r\n"},
        // The tester's last chunk is empty: the record still ends in "$FF" CR LF.
        {"empty parts", FillerRule::Position, "prx?10y:XXXXXXXX.\r\n\x11", "prx?10z:XXXXXXXX.\r\n\x11",
         "PA;B;C;$FF\r\n"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        s.transport.Expect("prx?10x\r").Reply("prx?10x:PA;B;C;.\r\n\x11");
        s.transport.Expect("prx?10y\r").Reply(c.y);
        s.transport.Expect("prx?10z\r").Reply(c.z);
        EXPECT_EQ(ReadRecord(s.link, 10, c.rule), c.record);
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}

// A part without the mark it is cut behind (garbage, a bare ".Nx") holds no record data: taking
// its whole text, as the position arithmetic would, put the tester's complaint into the record.
TEST(ReadRecord, APartWithoutItsMarkIsAFormatErrorNamingIt)
{
    const struct {
        const char *name;
        FillerRule rule;
        QByteArray x, y;
        const char *named;
    } cases[] = {
        {"x without colon", FillerRule::Position, "prx?10x.Nx\r\n\x11", "prx?10y:XXXXXXXXab.\r\n\x11",
         "prx?10x"},
        {"y without colon", FillerRule::Position, "prx?10x:PA;.\r\n\x11", "\x7f\x03kq0r8zzv\x11", "prx?10y"},
        {"y without the literal filler", FillerRule::Literal, "prx?10x:PA;.\r\n\x11",
         "prx?10y:ABCDEFGHdata.\r\n\x11", "prx?10y"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        s.transport.Expect("prx?10x\r").Reply(c.x);
        s.transport.Expect("prx?10y\r").Reply(c.y);
        s.transport.Expect("prx?10z\r").Reply("prx?10z:XXXXXXXX.\r\n\x11");
        try {
            ReadRecord(s.link, 10, c.rule);
            ADD_FAILURE() << "a part without its mark was taken";
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.text().contains(QString::fromLatin1(c.named))) << e.text().toStdString();
        }
    }
}

TEST(ReadRecord, APartTooShortForItsTrailerStopsTheRead)
{
    ScriptedLink s;
    s.transport.Expect("prx?1x\r").Reply("prx?1x:PA;.\r\n\x11");
    s.transport.Expect("prx?1y\r").Reply("prx?1y:XXXXXXXX\x11");
    EXPECT_THROW(ReadRecord(s.link, 1, FillerRule::Position), link::FormatError);
}

TEST(CountRecords, TheCountIsAWholeNumberBehindTheEqualsSignInAnyCaseAndSpacing)
{
    const struct {
        QByteArray answer;
        std::optional<int> count; // nullopt: a FormatError naming the command
    } cases[] = {
        {"prx?n= 12\r\n\x11", 12},
        {"prx?n=  7\r\n\x11", 7},
        {"prx?n=007\r\n\x11", 7},
        {"PRX?N=\t5\r\n\x11", 5},
        {"prx?n =3.Y\r\n\x11", 3},
        {"prx?n=0\r\n\x11", 0},
        {"prx?n= 999\x11", 999},
        {"prx?n\r\n\x11", std::nullopt},
        {"prx?n= \r\n\x11", std::nullopt},
        {"prx?n= -1\r\n\x11", std::nullopt},
        {"prx?n= 1000\r\n\x11", std::nullopt},
        {"prx?n= 99999999999\r\n\x11", std::nullopt},
        {"prx?n= 99999999999999999999999\r\n\x11", std::nullopt},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer.constData());
        ScriptedLink s;
        s.transport.Expect("prx?n\r").Reply(c.answer);
        if (c.count) {
            EXPECT_EQ(CountRecords(s.link), c.count);
            continue;
        }
        try {
            CountRecords(s.link);
            ADD_FAILURE() << "a count was read";
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.text().contains(QStringLiteral("prx?n"))) << e.text().toStdString();
        }
    }
    ScriptedLink refused;
    refused.transport.Expect("prx?n\r").Reply("prx?n Protokoll .N\r\n\x11");
    EXPECT_EQ(CountRecords(refused.link), std::nullopt);
}

TEST(StoreAllRecords, AHugeCountAsksForNoRecordAndLeavesTheOldFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("alle.txt"));
    WriteFile(path, "old\x81records\r\n");
    ScriptedLink s;
    s.prompter.fileAnswers.push_back(path);
    s.transport.Expect("prx?n\r").Reply("prx?n= 99999999999\r\n\x11");
    EXPECT_THROW(StoreAllRecords(s.link, s.prompter), link::FormatError);
    EXPECT_EQ(s.transport.writes().size(), 1u);
    EXPECT_EQ(ReadFile(path), QByteArray("old\x81records\r\n"));
}

TEST(CurrentRecord, PartsAreCutBehindTheEqualsSignWithoutFiller)
{
    ScriptedLink s;
    s.transport.Expect("prx?x\r").Reply("PRX?X=PA;B;.\r\n\x11");
    s.transport.Expect("prx?y\r").Reply("prx?y=C;D.\r\n").Reply("\x11", std::chrono::milliseconds(3));
    s.transport.Expect("prx?z\r").Reply("prx?z=;.\r\n\x11");
    EXPECT_EQ(ReadCurrentRecordParts(s.link), QByteArray("PA;B;C;D;$FF\r\n"));
}

TEST(StoreAllRecords, ReadsEveryRecordOfTheVirtualTesterIntoTheChosenFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("alle.txt"));
    kalvo::testing::SimBench s;
    QList<QByteArray> stored;
    for (int i = 1; i <= 11; ++i)
        stored << Stored("ID-" + QByteArray::number(i));
    s.tester.model().records().setRecords(stored);
    s.prompter.fileAnswers.push_back(path);
    QList<int> listed;
    const RetrievalResult result =
        StoreAllRecords(s.link, s.prompter, [&](int number, const QByteArray &) { listed << number; });
    ASSERT_EQ(result.status, RetrievalStatus::Done);
    EXPECT_EQ(s.Lines(), ReadAllCommands(11));
    QByteArray expected;
    for (const QByteArray &record : stored)
        expected += record + "\r\n";
    EXPECT_EQ(ReadFile(path), expected);
    EXPECT_EQ(listed.size(), 11);
    EXPECT_EQ(s.prompter.calls.first(), QStringLiteral("askSaveFile:Ascii file (*.txt)|*.txt|(*.*)|*.*"));
}

TEST(StoreAllRecords, EndsWithoutWritingWhenCancelledEmptyOrCutOff)
{
    const struct {
        const char *name;
        QString file; // empty: the dialog is cancelled
        int records;
        bool silent; // the tester stops answering after the first record
        RetrievalStatus status;
        QList<QByteArray> lines;
        QStringList messages;
    } cases[] = {
        {"cancelled", {}, 3, false, RetrievalStatus::Cancelled, {}, {}},
        {"empty store",
         QStringLiteral("alle.txt"),
         0,
         false,
         RetrievalStatus::NoRecords,
         {"prx?n\r"},
         {QStringLiteral("No Protokol")}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString path = dir.filePath(c.file.isEmpty() ? QStringLiteral("x.txt") : c.file);
        WriteFile(path, "old records");
        kalvo::testing::SimBench s;
        s.tester.model().records().KeepFirst(c.records);
        s.prompter.fileAnswers.push_back(c.file.isEmpty() ? QString() : path);
        EXPECT_EQ(StoreAllRecords(s.link, s.prompter).status, c.status);
        EXPECT_EQ(s.Lines(), c.lines);
        QStringList shown;
        for (const auto &m : s.prompter.messages)
            shown << m.text;
        EXPECT_EQ(shown, c.messages);
        EXPECT_EQ(ReadFile(path), QByteArray("old records"));
    }
}

TEST(StoreAllRecords, ATesterThatFallsSilentMidwayLeavesTheOldFile)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("alle.txt"));
    WriteFile(path, "old records");
    ScriptedLink s;
    s.link.setTimeout(std::chrono::seconds(2));
    s.prompter.fileAnswers.push_back(path);
    s.transport.Expect("prx?n\r").Reply("prx?n= 2\r\n\x11");
    s.transport.Expect("prx?1x\r").Reply("prx?1x:PA;.\r\n\x11");
    s.transport.Expect("prx?1y\r").Reply("prx?1y:XXXXXXXXB;.\r\n\x11");
    s.transport.Expect("prx?1z\r").Reply("prx?1z:XXXXXXXX$FF.\r\n\x11");
    s.transport.Expect("prx?2x\r");
    EXPECT_THROW(StoreAllRecords(s.link, s.prompter), link::Timeout);
    EXPECT_EQ(ReadFile(path), QByteArray("old records"));
}

TEST(ReadProtocols, ConfirmsTheCountThenReadsBehindTheLiteralFiller)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("service.txt"));
    for (const bool ok : {true, false}) {
        SCOPED_TRACE(ok ? "OK" : "Cancel");
        kalvo::testing::SimBench s;
        s.tester.model().records().setRecords({Stored("A"), Stored("B")});
        s.prompter.confirmAnswers.push_back(ok);
        s.prompter.fileAnswers.push_back(path);
        const RetrievalResult result = ReadProtocols(s.link, s.prompter);
        EXPECT_EQ(s.prompter.calls.first(), QStringLiteral("confirm:2 Protokolle gespeichert"));
        if (!ok) {
            EXPECT_EQ(result.status, RetrievalStatus::Cancelled);
            EXPECT_EQ(s.Lines(), QList<QByteArray>{"prx?n\r"});
            continue;
        }
        EXPECT_EQ(s.Lines(), ReadAllCommands(2));
        EXPECT_EQ(ReadFile(path), Stored("A") + "\r\n" + Stored("B") + "\r\n");
    }
}

TEST(StoreCurrentRecord, AsksForTheFileOnlyWhenThereIsARecord)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("aktuell.txt"));
    for (const bool present : {true, false}) {
        SCOPED_TRACE(present ? "current record" : "none");
        kalvo::testing::SimBench s;
        s.tester.model().records().setCurrent(present ? std::optional<QByteArray>(Stored("NOW"))
                                                      : std::nullopt);
        s.prompter.fileAnswers.push_back(path);
        const RetrievalResult result = StoreCurrentRecord(s.link, s.prompter);
        if (!present) {
            EXPECT_EQ(result.status, RetrievalStatus::NoRecords);
            EXPECT_EQ(s.Lines(), QList<QByteArray>{"prx?\r"});
            ASSERT_EQ(s.prompter.messages.size(), 1u);
            EXPECT_EQ(s.prompter.messages[0].text, QStringLiteral("No Protokol"));
            continue;
        }
        EXPECT_EQ(s.Lines(), (QList<QByteArray>{"prx?\r", "prx?x\r", "prx?y\r", "prx?z\r"}));
        EXPECT_EQ(ReadFile(path), Stored("NOW") + "\r\n");
    }
}

TEST(StoreListing, OnlyTestRecordsReachTheListAndTheRawAnswerIsKept)
{
    QTemporaryDir dir;
    const QString proto = dir.filePath(QStringLiteral("proto.txt"));
    ScriptedLink s;
    const QByteArray listing = "DATABASE  Nr=1;01.01.09;08:00;VORGABE-A;;;;;;;;;;"
                               "PROTOKOLL Nr=2;17.03.09;10:42;4711;Typ;DIN VDE 0702;bestanden;;;;;;;\r\n"
                               "PROTOKOLL Nr=12;18.03.09;11:00;DATABASE-X;;;;;;;;;;"
                               "protokoll Nr=13;18.03.09;11:05;Nr#5@Halle 2 M\x81hle;;;;;;;;;;\x11";
    s.transport.Expect("prx?nx\r")
        .Reply(listing.left(40))
        .Reply(listing.mid(40), std::chrono::milliseconds(5));
    const std::optional<StoreListing> read = ReadStoreListing(s.link, s.prompter, proto);
    ASSERT_TRUE(read);
    const StoreListing &result = *read;
    EXPECT_EQ(ReadFile(proto), listing);
    ASSERT_EQ(result.rows.size(), 4);
    EXPECT_EQ(result.rows[1][5], QByteArray("DIN VDE 0702"));
    EXPECT_EQ(result.rows[2][0], QByteArray("PROTOKOLL Nr=12")); // the line end belongs to no field
    // Only field 0 says what a row is; a device called "DATABASE-X" is still a test record. The
    // device's id is shown whole, "#" and "@" included.
    EXPECT_EQ(result.records, (QStringList{QStringLiteral("4711:2"), QStringLiteral("DATABASE-X:12"),
                                           QStringLiteral("Nr#5@Halle 2 Mühle:13")}));

    EXPECT_TRUE(ParseStoreListing("prx?nx\r\n;\x11").records.isEmpty());
}

TEST(StoreListing, TheVirtualTestersListingNamesItsRecords)
{
    QTemporaryDir dir;
    kalvo::testing::SimBench s;
    s.tester.model().records().setRecords({Stored("DEV-1"), Stored("DEV-2")});
    const ListingResult result =
        ListStoreRecords(s.link, s.prompter, dir.filePath(QStringLiteral("proto.txt")));
    EXPECT_EQ(result.status, RetrievalStatus::Done);
    EXPECT_EQ(result.listing.records, (QStringList{QStringLiteral("DEV-1:1"), QStringLiteral("DEV-2:2")}));
    EXPECT_EQ(result.listing.numbers, (QList<int>{1, 2}));
    EXPECT_EQ(s.Lines(), (QList<QByteArray>{"prx?n\r", "prx?nx\r"}));
}

TEST(AccessoryStream, RecordsEndTwoCharactersBehindTheDollar)
{
    const struct {
        const char *name;
        QByteArray stream;
        QList<QByteArray> records;
    } cases[] = {
        {"two records",
         "KA\x13"
         "B$FFKC$FF\x11",
         {"KA;B$FF\r\n", "KC$FF\r\n"}},
        {"the character after FF opens the next",
         "KA$FFA\x13"
         "B$FF\x11",
         {"KA$FF\r\n", "A;B$FF\r\n"}},
        {"line ends and other dropped bytes vanish, tester characters become Windows bytes",
         "K\r\nA\x13\xea#B\x81\xc4$FF\x11",
         {"KA;OhmB\xfc\xc4$FF\r\n"}},
        {"an unfinished record is not one",
         "KA$FF\x11"
         "KB$F",
         {"KA$FF\r\n"}},
        {"nothing", "\x11", {}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(SplitAccessoryStream(c.stream), c.records) << c.name;
}

TEST(AccessoryRead, NeedsTheAccessoryAndItsRecords)
{
    const struct {
        const char *name;
        bool inFront;
        int records;
        RetrievalStatus status;
        QList<QByteArray> lines;
        QString message;
    } cases[] = {
        {"no accessory",
         false,
         2,
         RetrievalStatus::NoAccessory,
         {"idn?\r"},
         QStringLiteral("Kein KYM gefunden")},
        {"no records",
         true,
         0,
         RetrievalStatus::NoRecords,
         {"idn?\r", "esr?\r"},
         QStringLiteral("No Protokoll")},
        {"two records", true, 2, RetrievalStatus::Done, {"idn?\r", "esr?\r", "wer?\r"}, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString logTmp = dir.filePath(QStringLiteral("log.tmp"));
        kalvo::testing::SimBench s;
        s.tester.model().setKymInFront(c.inFront);
        QList<QByteArray> stored;
        for (int i = 0; i < c.records; ++i)
            stored << Stored("KYM-" + QByteArray::number(i));
        s.tester.model().records().setAccessoryRecords(stored);
        const RetrievalResult result = ReadAccessoryRecords(s.link, s.prompter, logTmp);
        EXPECT_EQ(result.status, c.status);
        EXPECT_EQ(s.Lines(), c.lines);
        if (!c.message.isEmpty()) {
            ASSERT_EQ(s.prompter.messages.size(), 1u);
            EXPECT_EQ(s.prompter.messages[0].text, c.message);
            EXPECT_FALSE(QFile::exists(logTmp));
            continue;
        }
        ASSERT_EQ(result.records.size(), c.records);
        // Same fields as the stored record; only the lead character says where it came from.
        EXPECT_EQ(result.records[1].mid(1), Stored("KYM-1").mid(1) + "\r\n");
        EXPECT_EQ(LoadRecordFile(logTmp), result.records);
    }
}

TEST(PrintText, StoredRecordsAreRenderedInsideTheRemoteSessionAndBadTemplatesSendNothing)
{
    const struct {
        int templateNumber;
        QList<QByteArray> lines;
    } cases[] = {
        {1, {"tas!ron\r", "prn!1,2\r", "rst!0\r"}},
        {0, {"tas!ron\r", "prn!0,2\r", "rst!0\r"}},
        {5, {}},
        {-1, {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.templateNumber);
        kalvo::testing::SimBench s;
        s.tester.model().records().setRecords({Stored("A"), Stored("PRINTME")});
        const QString text = RenderStoredRecord(s.link, c.templateNumber, 2);
        EXPECT_EQ(s.Lines(), c.lines);
        if (c.lines.isEmpty())
            EXPECT_TRUE(text.isEmpty());
        else
            EXPECT_TRUE(text.contains(QStringLiteral("PRINTME"))) << text.toStdString();
    }
    kalvo::testing::SimBench s;
    s.tester.model().records().setCurrent(Stored("CURRENT"));
    EXPECT_TRUE(RenderCurrentRecord(s.link, 3).contains(QStringLiteral("CURRENT")));
    EXPECT_EQ(s.Lines(), QList<QByteArray>{"prn!3\r"});
}
