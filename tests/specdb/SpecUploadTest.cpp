// Storing specifications: the exact commands, the questions, and every way a tester may say no.
#include "specdb/SpecUpload.h"
#include "specdb/SetFile.h"

#include "link/Errors.h"
#include "link/LanguageTable.h"
#include "link/LinkFixture.h"
#include "support/TestFiles.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::specdb;
using kalvo::testing::ReadFile;
using kalvo::testing::ScriptedLink;
using kalvo::testing::WriteFile;

namespace {

const QDateTime kNow(QDate(2009, 3, 4), QTime(14, 0, 9));
const QByteArray kCodes = "0000000000001000000000000000050200000000";
const QByteArray kFirst =
    "prx!add 05 Werkstatt; ;" + kCodes + ";04.03.09;14:0:9;;<0.300\xEA" + QByteArray(14, ';');
const QByteArray kSecond = "prx!add &9;;<0.500mA" + QByteArray(14, ';');
const QByteArray kThird = "prx!add &17" + QByteArray(10, ';') + ";;>1.50kV";

SpecRecord Record()
{
    SpecRecord record;
    for (QByteArray &code : record.codes)
        code = "00";
    record.codes[6] = "10";
    record.codes[14] = "05";
    record.codes[15] = "02";
    record.limits[1] = "<0.300\xEA";
    record.limits[9] = "<0.500mA";
    record.limits[22] = ">1.50kV";
    return record;
}

QByteArray Taken(const QByteArray &command)
{
    return command + ".Y\r\n\x11";
}

struct UploadBench {
    ScriptedLink s;
    link::LanguageTable texts;
    SpecRecord record = Record();
    UploadResult Store(const StoreState &store = {4, false}, const QList<int> &looser = {})
    {
        return StoreEditorRecord(s.link, s.prompter, texts, record, store, looser, kNow);
    }
};

} // namespace

TEST(EditorUpload, ThreeChunksWithTheRunningNumberAndTheName)
{
    UploadBench b;
    b.s.prompter.textAnswers.push_back(QStringLiteral("Werkstatt"));
    b.s.transport.Expect(kFirst + '\r').Reply(Taken(kFirst));
    b.s.transport.Expect(kSecond + '\r').Reply(Taken(kSecond));
    b.s.transport.Expect(kThird + '\r').Reply(Taken(kThird));
    const UploadResult result = b.Store();
    EXPECT_EQ(result.status, UploadStatus::Stored);
    EXPECT_EQ(result.label, "05 Werkstatt");
    EXPECT_TRUE(b.s.transport.allExpectationsMet());
    EXPECT_TRUE(b.s.prompter.messages.empty());
    ASSERT_EQ(b.s.prompter.calls.size(), 1);
    EXPECT_TRUE(b.s.prompter.calls[0].contains(QStringLiteral("Name der Prüfvorschrift:")));
}

TEST(EditorUpload, OtherFormsOfYesAreTaken)
{
    const QByteArray forms[] = {
        ".Y\n\x11",                        // no echo
        "PRX!ADD 05 WERKSTATT;...;.Y\x11", // an echo in capitals (cut short, as a tester's buffer may)
        "prx!add &9 .Y \r\n\x11",
    };
    for (const QByteArray &yes : forms) {
        UploadBench b;
        b.s.prompter.textAnswers.push_back(QStringLiteral("Werkstatt"));
        for (const QByteArray &command : {kFirst, kSecond, kThird})
            b.s.transport.Expect(command + '\r').Reply(yes);
        EXPECT_EQ(b.Store().status, UploadStatus::Stored) << yes.constData();
        EXPECT_TRUE(b.s.transport.allExpectationsMet());
    }
}

TEST(EditorUpload, AnAnswerIsJudgedByItsOwnMarkNotByTheEchoOfTheName)
{
    const struct {
        const char *name;
        QByteArray answer; // to the first chunk; "=" stands for the whole command
        UploadStatus status;
    } cases[] = {
        {"SK.N", "=.Y\r\n\x11", UploadStatus::Stored},
        {"DR.NEU", "PRX!ADD 05 DR.NEU; ;0000.Y\n\x11", UploadStatus::Stored}, // echo cut short, capitals
        {"DR.NEU", "PRX!ADD 05 DR.N.Y\n\x11", UploadStatus::Stored},
        {"DR.NEU", "PRX!ADD 05 DR.NEU; ;0000000000001000000000000000050200000000;04.Y\n\x11",
         UploadStatus::Stored}, // the "." of the mark where the command has one too
        {"DR.NEU", ".Y\r\n\x11", UploadStatus::Stored},
        {"Gut.Y", "=.Nx\r\n\x11", UploadStatus::NotStored},
        {"Gut.Y", "PRX!ADD 05 Gut.Y; ;00 Protokoll .N\r\n\x11", UploadStatus::NotStored},
        {"Gut.Y", "prx!add 05 Gut.Y\r\n\x11", UploadStatus::NotStored},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.answer.constData());
        UploadBench b;
        b.s.prompter.textAnswers.push_back(QString::fromLatin1(c.name));
        const QByteArray first = "prx!add 05 " + QByteArray(c.name) + "; ;" +
                                 kFirst.mid(QByteArray("prx!add 05 Werkstatt; ;").size());
        b.s.transport.Expect(first + '\r')
            .Reply(c.answer.startsWith('=') ? first + c.answer.mid(1) : c.answer);
        if (c.status == UploadStatus::Stored) {
            b.s.transport.Expect(kSecond + '\r').Reply(Taken(kSecond));
            b.s.transport.Expect(kThird + '\r').Reply(Taken(kThird));
        }
        EXPECT_EQ(b.Store().status, c.status);
        EXPECT_TRUE(b.s.transport.allExpectationsMet());
    }
}

TEST(EditorUpload, ARefusalAtAnyChunkStopsTheRecordAndSaysSo)
{
    const QByteArray commands[] = {kFirst, kSecond, kThird};
    const QByteArray noes[] = {" Protokoll .N\r\n\x11", ".Nx\r\n\x11", "\r\n\x11", "\r\n>\x11"};
    for (int refusedAt = 0; refusedAt < 3; ++refusedAt) {
        for (const QByteArray &no : noes) {
            SCOPED_TRACE(refusedAt);
            SCOPED_TRACE(no.constData());
            UploadBench b;
            b.s.prompter.textAnswers.push_back(QStringLiteral("Werkstatt"));
            for (int i = 0; i <= refusedAt; ++i)
                b.s.transport.Expect(commands[i] + '\r')
                    .Reply(i == refusedAt ? commands[i] + no : Taken(commands[i]));
            const UploadResult result = b.Store();
            EXPECT_EQ(result.status, UploadStatus::NotStored);
            EXPECT_TRUE(b.s.transport.allExpectationsMet());
            EXPECT_EQ(b.s.transport.writes().size(), static_cast<size_t>(refusedAt + 1))
                << "nothing after the refusal; the partial record is kept on Cancel";
            ASSERT_FALSE(b.s.prompter.messages.empty());
            const QString said = b.s.prompter.messages.back().text;
            EXPECT_TRUE(said.startsWith(kNotLoadedText + QStringLiteral("\nNicht"))) << said.toStdString();
            EXPECT_FALSE(said.contains(QLatin1Char('\r'))) << said.toStdString();
            EXPECT_TRUE(said.contains(QString::fromLatin1(commands[refusedAt].left(20))))
                << said.toStdString();
            EXPECT_GE(b.s.link.refusals(), 1);
            // A first chunk taken may have begun record 5 in the tester: it is named and offered
            // for deletion; a first chunk refused began nothing.
            const QString question = b.s.prompter.calls.filter(QStringLiteral("confirmLoss:")).join(u'|');
            EXPECT_EQ(result.storeChanged, refusedAt > 0);
            EXPECT_EQ(question.contains(QStringLiteral("Datensatz 5 löschen?")), refusedAt > 0)
                << question.toStdString();
        }
    }
}

TEST(EditorUpload, APartialRecordIsDeletedWhenTheUserSaysSo)
{
    for (const bool deletionTaken : {true, false}) {
        UploadBench b;
        b.s.prompter.textAnswers.push_back(QStringLiteral("Werkstatt"));
        b.s.prompter.confirmAnswers.push_back(true);
        b.s.transport.Expect(kFirst + '\r').Reply(Taken(kFirst));
        b.s.transport.Expect(kSecond + '\r').Reply(kSecond + " Protokoll .N\r\n\x11");
        b.s.transport.Expect("prx!del 5\r").Reply(deletionTaken ? ".Y\r\n\x11" : "prx!del 5.Nx\r\n\x11");
        const UploadResult result = b.Store();
        EXPECT_EQ(result.status, UploadStatus::NotStored);
        EXPECT_TRUE(result.storeChanged);
        EXPECT_TRUE(b.s.transport.allExpectationsMet());
        EXPECT_EQ(b.s.prompter.messages.size(), deletionTaken ? 2u : 3u) << "a deletion not taken is told";
    }
}

TEST(EditorUpload, NothingIsSentWhenTheRecordMayNotOrCannotGo)
{
    const struct {
        const char *name;
        StoreState store;
        QList<int> looser;
        std::function<void(UploadBench &)> setUp;
        UploadStatus status;
        QString said; // the message or question, in part
    } cases[] = {
        {"store with test records", {3, true}, {}, [](UploadBench &) {}, UploadStatus::HoldsTestRecords, {}},
        {"limit too short",
         {},
         {},
         [](UploadBench &b) { b.record.limits[12] = "<0.1mA"; },
         UploadStatus::Invalid,
         QStringLiteral("falsches Zahlenformat (12)")},
        {"looser limits, Cancel",
         {},
         {3, 12},
         [](UploadBench &) {},
         UploadStatus::Cancelled,
         QStringLiteral("Feldern 3, 12")},
        {"no name",
         {},
         {},
         [](UploadBench &b) { b.s.prompter.textAnswers.push_back(QString()); },
         UploadStatus::Cancelled,
         {}},
        {"name cancelled",
         {},
         {},
         [](UploadBench &b) { b.s.prompter.textAnswers.push_back(std::nullopt); },
         UploadStatus::Cancelled,
         {}},
        {"name with a separator",
         {},
         {},
         [](UploadBench &b) { b.s.prompter.textAnswers.push_back(QStringLiteral("A;B")); },
         UploadStatus::Invalid,
         QStringLiteral("A;B")},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        UploadBench b;
        c.setUp(b);
        EXPECT_EQ(b.Store(c.store, c.looser).status, c.status);
        EXPECT_TRUE(b.s.transport.writes().empty());
        if (!c.said.isEmpty()) {
            EXPECT_TRUE(b.s.prompter.calls.join(u'|').contains(c.said))
                << b.s.prompter.calls.join(u'|').toStdString();
        }
    }
}

TEST(EditorUpload, LooserLimitsAreStoredOnceConfirmed)
{
    UploadBench b;
    b.s.prompter.confirmAnswers.push_back(true);
    b.s.prompter.textAnswers.push_back(QStringLiteral("Werkstatt"));
    for (const QByteArray &command : {kFirst, kSecond, kThird})
        b.s.transport.Expect(command + '\r').Reply(Taken(command));
    EXPECT_EQ(b.Store({4, false}, {22}).status, UploadStatus::Stored);
    EXPECT_TRUE(b.s.prompter.calls[0].startsWith(QStringLiteral("confirm:")));
    EXPECT_TRUE(b.s.prompter.calls[0].contains(QStringLiteral("Feldern 22")));
}

TEST(SetUpload, EveryRecordOfASetTextGoesWithItsOwnSplit)
{
    for (const int records : {1, 2}) {
        QTemporaryDir dir;
        const QString path = dir.filePath(QStringLiteral("ablauf.set"));
        WriteFile(path, "old");
        ScriptedLink s;
        QByteArray text;
        for (int r = 1; r <= records; ++r) {
            const QByteArray n = QByteArray::number(r);
            text += "0" + n + " S; ;" + kCodes + ";01.01.09;8:0:0\r\n" + QByteArray(24, ';') + "\r\n" +
                    QByteArray(20, ';') + "\r\n";
            s.transport.Expect("prx!add 0" + n + " S; ;" + kCodes + ";01.01.09;8:0:0\r").Reply(".Y\r\n\x11");
            s.transport.Expect("prx!add &1" + QByteArray(24, ';') + '\r').Reply(".Y\r\n\x11");
            s.transport.Expect("prx!add &13" + QByteArray(20, ';') + '\r').Reply(".Y\r\n\x11");
        }
        const auto result = SaveAndStoreSetText(s.link, s.prompter, path, text);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->records, records);
        EXPECT_TRUE(result->complete());
        EXPECT_EQ(s.transport.writes().size(), static_cast<size_t>(3 * records));
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(ReadFile(path), text);
    }
}

TEST(SetUpload, ARefusedRecordIsSkippedAndTheNextOneStillGoes)
{
    ScriptedLink s;
    const QList<SetGroup> groups{{"01 A", ";a", ";b"}, {"02 B", ";c", ";d"}};
    s.transport.Expect("prx!add 01 A\r").Reply("prx!add 01 A Protokoll .N\r\n\x11");
    s.transport.Expect("prx!add 02 B\r").Reply(".Y\r\n\x11");
    s.transport.Expect("prx!add &1;c\r").Reply(".Y\r\n\x11");
    s.transport.Expect("prx!add &13;d\r").Reply(".Y\r\n\x11");
    const SetUploadResult result = StoreSetGroups(s.link, groups);
    EXPECT_EQ(result.records, 2);
    EXPECT_EQ(result.stored, 1);
    EXPECT_TRUE(s.transport.allExpectationsMet());
}

TEST(SetUpload, TooLongATextIsNeitherWrittenNorSent)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("gross.set"));
    WriteFile(path, "old");
    ScriptedLink s;
    EXPECT_FALSE(SaveAndStoreSetText(s.link, s.prompter, path, QByteArray(kMaxSetText + 1, 'a')));
    EXPECT_EQ(ReadFile(path), "old");
    ASSERT_EQ(s.prompter.messages.size(), 1u);
    EXPECT_EQ(s.prompter.messages[0].text, QStringLiteral("nur 10 Datensätze möglich"));
    EXPECT_TRUE(s.transport.writes().empty());
}

TEST(SetUpload, ChosenFilesGiveTheirFirstRecordAndABadOneStopsAllOfThem)
{
    QTemporaryDir dir;
    const QString four = dir.filePath(QStringLiteral("vier.set"));
    const QString two = dir.filePath(QStringLiteral("zwei.set"));
    const QString big = dir.filePath(QStringLiteral("gross.set"));
    WriteFile(four, "01 A\r\n;a\r\n;b\r\n02 B\r\n");
    WriteFile(two, "01 C\r\n;c\r\n");
    WriteFile(big, QByteArray(kMaxSetText + 1, 'x'));
    {
        ScriptedLink s;
        for (const char *command : {"prx!add 01 A\r", "prx!add &1;a\r", "prx!add &13;b\r", "prx!add 01 A\r",
                                    "prx!add &1;a\r", "prx!add &13;b\r"})
            s.transport.Expect(command).Reply(".Y\r\n\x11");
        const auto result = StoreSetFiles(s.link, s.prompter, {four, four});
        ASSERT_TRUE(result);
        EXPECT_EQ(result->stored, 2);
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
    for (const QString &bad : {two, big, dir.filePath(QStringLiteral("fehlt.set"))}) {
        ScriptedLink s;
        EXPECT_FALSE(StoreSetFiles(s.link, s.prompter, {four, bad}));
        EXPECT_TRUE(s.transport.writes().empty());
        EXPECT_EQ(s.prompter.messages.size(), 1u);
    }
}

TEST(SetUpload, ASetFileThatCannotBeWrittenSendsNothing)
{
    QTemporaryDir dir;
    ScriptedLink s;
    const QString path = dir.filePath(QStringLiteral("fehlt/ablauf.set"));
    EXPECT_THROW(SaveAndStoreSetText(s.link, s.prompter, path, "01 A\r\n;a\r\n;b\r\n"), link::FormatError);
    EXPECT_TRUE(s.transport.writes().empty());
}
