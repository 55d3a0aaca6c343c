// Reading the store as the database window does, against answers a tester may give.
#include "specdb/SpecStore.h"
#include "specdb/SpecDecoding.h"
#include "specdb/SpecEditor.h"

#include "link/Errors.h"
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

const QByteArray kCodes = "1000000000000000000000000000050200000000";
const QByteArray kOldTrace = "alt\r\n";

struct StoreBench {
    QTemporaryDir dir;
    QString trace = dir.filePath(QStringLiteral("test.txt"));
    ScriptedLink s;
    StoreBench() { WriteFile(trace, kOldTrace); }
    void Step(const QByteArray &command, const QByteArray &answer)
    {
        s.transport.Expect(command + '\r').Reply(answer);
    }
};

// A specification in three answers that end in ">" DC1, echoes in capitals.
void ScriptSpecification(StoreBench &b, int i)
{
    const QByteArray n = QByteArray::number(i);
    b.Step("prx?" + n + "x", "PRX?" + n + "X:;DATABASE  Nr=" + n + ";" + kCodes + ";0" + n +
                                 " Werk@statt #\x81{};04.03.09;9:5:7;;<0.300\xEA;;;;>2.000M\xEA" +
                                 QByteArray(10, ';') + "\r\n>\x11");
    b.Step("prx?" + n + "y", "PRX?" + n + "Y:XXXXXXXX;;;<0.500mA" + QByteArray(14, ';') + "\r\n>\x11");
    b.Step("prx?" + n + "z", "PRX?" + n + "Z:XXXXXXXX;" + QByteArray(10, ';') + ";;>1.50kV\r\n>\x11");
}

// A test record in the store's usual form: a ".", CR LF and DC1 behind each part; `last` is the
// z answer's text behind its filler.
void ScriptTestRecord(StoreBench &b, int i, const QByteArray &device,
                      const QByteArray &last = ";;$FF.\r\n\x11")
{
    const QByteArray n = QByteArray::number(i);
    b.Step("prx?" + n + "x", "prx?" + n + "x:P;05.03.09;10:00;" + device + ";SK I;.\r\n\x11");
    b.Step("prx?" + n + "y", "prx?" + n + "y:XXXXXXXX0.12;<0.300\xEA;.\r\n\x11");
    b.Step("prx?" + n + "z", "prx?" + n + "z:XXXXXXXX" + last);
}

} // namespace

TEST(StoreReading, SpecificationsAndTestRecordsAreListedApart)
{
    StoreBench b;
    b.Step("prx?n", "PRX?N=   2\r\n\x11");
    ScriptSpecification(b, 1);
    ScriptTestRecord(b, 2,
                     "GER\x8E"
                     "T-7");
    const auto store = ReadSpecStore(b.s.link, b.s.prompter, b.trace);
    ASSERT_TRUE(store);
    EXPECT_TRUE(b.s.transport.allExpectationsMet());
    EXPECT_EQ(store->entries,
              (QStringList{QStringLiteral("1: 01 Werkstatt "), QStringLiteral("2:measured: GERT-7")}));
    EXPECT_TRUE(store->holdsTestRecords);
    EXPECT_TRUE(store->IsSpecification(1));
    EXPECT_FALSE(store->IsSpecification(2));
    EXPECT_FALSE(store->IsSpecification(3));

    const QList<QByteArray> &fields = store->records[0];
    ASSERT_EQ(fields.size(), LimitField(kLimitBoxes) + 1);
    EXPECT_EQ(fields[1], kCodes);
    EXPECT_EQ(fields[3], "04.03.09");
    EXPECT_EQ(fields[4], "9:5:7");
    EXPECT_EQ(fields[LimitField(1)], "<0.300\xEA");
    EXPECT_EQ(fields[LimitField(3)], ">2.000M\xEA");
    EXPECT_EQ(fields[LimitField(9)], "<0.500mA");
    EXPECT_EQ(fields[LimitField(22)], ">1.50kV");
    EXPECT_TRUE(fields[LimitField(8)].isEmpty());
    EXPECT_TRUE(fields[LimitField(16)].isEmpty());
    EXPECT_TRUE(b.s.prompter.messages.empty());
    EXPECT_EQ(b.s.prompter.progressValues.back(), 100);

    const QByteArray trace = ReadFile(b.trace);
    EXPECT_TRUE(trace.startsWith("1 X DATABASE  Nr=1;" + kCodes + ";01 Werk@statt #\x81{};"))
        << trace.constData();
    EXPECT_TRUE(trace.contains("\r\n2 Y <0.300\xEA;\r\n2 Z ;$FF\r\n")) << trace.constData();
}

TEST(StoreReading, ATestRecordWhoseLastPartHoldsNoSeparatorIsListedWithTheRest)
{
    // A tester cuts a record where its buffer is full: the last part may hold no ";" at all.
    const QByteArray lastParts[] = {".\r\n\x11", "$FF.\r\n\x11", "  \n\x11", "FF>\x11"};
    for (const QByteArray &last : lastParts) {
        SCOPED_TRACE(last.constData());
        StoreBench b;
        b.Step("prx?n", "PRX?N= 3\r\n\x11");
        ScriptTestRecord(b, 1, "BOHRER", last);
        ScriptSpecification(b, 2);
        ScriptTestRecord(b, 3, "LAMPE");
        const auto store = ReadSpecStore(b.s.link, b.s.prompter, b.trace);
        ASSERT_TRUE(store);
        EXPECT_TRUE(b.s.transport.allExpectationsMet());
        EXPECT_EQ(store->entries,
                  (QStringList{QStringLiteral("1:measured: BOHRER"), QStringLiteral("2: 02 Werkstatt "),
                               QStringLiteral("3:measured: LAMPE")}));
        EXPECT_EQ(store->records[0].size(), 6) << "the last part adds no field";
        EXPECT_TRUE(b.s.prompter.messages.empty());
    }
}

TEST(StoreReading, TestRecordsAreNoSpecificationsNorRefusalsWhateverTheirText)
{
    StoreBench b;
    b.Step("prx?n", "prx?n= 3\r\n\x11");
    ScriptTestRecord(b, 1, "Protokoll 3.Nachpruefung");
    b.Step("prx?2x", "prx?2x:P;Database-Server;10:00;SRV-1;.\r\n\x11");
    b.Step("prx?2y", "prx?2y:XXXXXXXX;.\r\n\x11");
    b.Step("prx?2z", "prx?2z:XXXXXXXX Protokoll .N;$FF.\r\n\x11");
    ScriptSpecification(b, 3);
    const auto store = ReadSpecStore(b.s.link, b.s.prompter, b.trace);
    ASSERT_TRUE(store);
    EXPECT_EQ(store->entries,
              (QStringList{QStringLiteral("1:measured: Protokoll 3.Nachpruefung"),
                           QStringLiteral("2:measured: SRV-1"), QStringLiteral("3: 03 Werkstatt ")}));
    EXPECT_FALSE(store->IsSpecification(2));
    EXPECT_EQ(b.s.link.refusals(), 0);
    EXPECT_TRUE(b.s.prompter.messages.empty());
    EXPECT_NE(ReadFile(b.trace), kOldTrace);
}

TEST(StoreReading, AnAnswerWithoutPrxIsAnEmptyStoreWithoutAMessage)
{
    for (const QByteArray &answer : {QByteArray("= 3\r\n\x11"), QByteArray("\r\n>\x11")}) {
        StoreBench b;
        b.Step("prx?n", answer);
        const auto store = ReadSpecStore(b.s.link, b.s.prompter, b.trace);
        ASSERT_TRUE(store);
        EXPECT_TRUE(store->entries.isEmpty());
        EXPECT_TRUE(store->unanswered);
        EXPECT_FALSE(store->holdsTestRecords);
        EXPECT_TRUE(b.s.prompter.messages.empty());
        EXPECT_TRUE(b.s.transport.allExpectationsMet());
    }
}

TEST(StoreReading, ARefusalAtAnyPartWritesNoTrace)
{
    for (const char *refused : {"prx?n", "prx?2x", "prx?2y", "prx?2z"}) {
        SCOPED_TRACE(refused);
        StoreBench b;
        const QByteArray refusal = QByteArray(refused) + " Protokoll .N\r\n\x11";
        b.Step("prx?n", QByteArray(refused) == "prx?n" ? refusal : "prx?n= 2\r\n\x11");
        if (QByteArray(refused) != "prx?n") {
            ScriptSpecification(b, 1);
            for (const char part : {'x', 'y', 'z'}) {
                const QByteArray command = "prx?2" + QByteArray(1, part);
                b.Step(command,
                       command == refused ? refusal : "prx?2" + QByteArray(1, part) + ":;P;x;y.\r\n\x11");
            }
        }
        EXPECT_FALSE(ReadSpecStore(b.s.link, b.s.prompter, b.trace));
        EXPECT_TRUE(b.s.transport.allExpectationsMet());
        EXPECT_EQ(ReadFile(b.trace), kOldTrace);
        ASSERT_FALSE(b.s.prompter.messages.empty());
        EXPECT_TRUE(b.s.prompter.messages.back().text.contains(QLatin1String(refused)));
    }
}

TEST(StoreReading, AnswersThatCannotBeTakenApartAreFormatErrors)
{
    const struct {
        const char *name;
        QByteArray count;
        QByteArray first;
        QByteArray second;
    } cases[] = {
        {"no count", "prx?n=\r\n\x11", {}, {}},
        {"count beyond the store", "prx?n= 5000\r\n\x11", {}, {}},
        {"first part neither behind \":\" nor \";\"", "prx?n= 1\r\n\x11", "\x01\x02garbage\x11", {}},
        {"second part neither behind \":\" nor \";\"", "prx?n= 1\r\n\x11", "prx?1x:;DATABASE;.\r\n\x11",
         "prx?1y XXXXXXXX\x11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        StoreBench b;
        b.Step("prx?n", c.count);
        if (!c.first.isEmpty())
            b.Step("prx?1x", c.first);
        if (!c.second.isEmpty())
            b.Step("prx?1y", c.second);
        EXPECT_THROW(ReadSpecStore(b.s.link, b.s.prompter, b.trace), link::FormatError);
        EXPECT_EQ(ReadFile(b.trace), kOldTrace);
    }
}

TEST(StoreReading, FieldsAreBoundedHoweverLongTheAnswer)
{
    QList<QByteArray> fields;
    AppendRecordPart(fields, "prx?1x:;" + QByteArray(10000, 'A') + QByteArray(500, ';') + "tail.\r\n\x11");
    EXPECT_EQ(fields.size(), kKeptFields);
    EXPECT_EQ(fields[0].size(), kKeptFieldBytes);
    EXPECT_TRUE(fields.last().isEmpty());
}

TEST(StoreReading, ATraceThatCannotBeWrittenStillGivesTheList)
{
    StoreBench b;
    b.trace = b.dir.filePath(QStringLiteral("fehlt/test.txt"));
    b.Step("prx?n", "prx?n= 1\r\n\x11");
    ScriptSpecification(b, 1);
    const auto store = ReadSpecStore(b.s.link, b.s.prompter, b.trace);
    ASSERT_TRUE(store);
    EXPECT_EQ(store->count(), 1);
    ASSERT_EQ(b.s.prompter.messages.size(), 1u);
    EXPECT_TRUE(b.s.prompter.messages[0].text.contains(QStringLiteral("test.txt")));
}

namespace {

// A specification's record text as the upload wrote it: the head, then ";" extra ";" limit for each
// box, every limit telling its box ("<0.0NNmA").
QByteArray SpecificationItems(int first, int last)
{
    QByteArray items;
    for (int box = first; box <= last; ++box)
        items += ";;<0." + QByteArray::number(box).rightJustified(3, '0') + "mA";
    return items;
}

const QByteArray kHead = ";DATABASE  Nr=1;" + kCodes + ";01 Werkstatt;04.03.09;9:5:7";

} // namespace

TEST(StoreReading, LimitsArePlacedByTheRecordsStructureWhateverTheChunking)
{
    const QByteArray whole = kHead + SpecificationItems(1, 22);
    const qsizetype third = whole.size() / 3;
    const struct {
        const char *name;
        QByteArray x, y, z; // the answers to "prx?1x", "y", "z"
    } cases[] = {
        {"a ';' of their own in front of y and z", "prx?1x:" + kHead + SpecificationItems(1, 8) + ".\r\n\x11",
         "prx?1y:XXXXXXXX;" + SpecificationItems(9, 16) + ".\r\n\x11",
         "prx?1z:XXXXXXXX;" + SpecificationItems(17, 22) + ".\r\n\x11"},
        {"y and z as the upload sent them, capitals, other trailers",
         "PRX?1X:" + kHead + SpecificationItems(1, 8) + "\r\n>\x11",
         "PRX?1Y:XXXXXXXX" + SpecificationItems(9, 16) + "  \n\x11",
         "PRX?1Z:XXXXXXXX" + SpecificationItems(17, 22) + "\r\n>\x11"},
        {"cut at thirds, inside fields", "prx?1x:" + whole.left(third) + ".\r\n\x11",
         "prx?1y:XXXXXXXX" + whole.mid(third, third) + ".\r\n\x11",
         "prx?1z:XXXXXXXX" + whole.mid(2 * third) + ".\r\n\x11"},
        {"no filler", "prx?1x:" + kHead + SpecificationItems(1, 8) + ".\r\n\x11",
         "prx?1y:" + SpecificationItems(9, 16) + ".\r\n\x11",
         "prx?1z:" + SpecificationItems(17, 22) + ".\r\n\x11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        StoreBench b;
        b.Step("prx?n", "prx?n= 1\r\n\x11");
        b.Step("prx?1x", c.x);
        b.Step("prx?1y", c.y);
        b.Step("prx?1z", c.z);
        const auto store = ReadSpecStore(b.s.link, b.s.prompter, b.trace);
        ASSERT_TRUE(store);
        EXPECT_EQ(store->entries, QStringList{QStringLiteral("1: 01 Werkstatt")});
        ASSERT_TRUE(store->limits.value(0));
        const BoxTexts &limits = *store->limits[0];
        for (int box = 1; box <= kLimitBoxes; ++box)
            EXPECT_EQ(limits[static_cast<size_t>(box)],
                      "<0." + QByteArray::number(box).rightJustified(3, '0') + "mA")
                << box;
    }
}

TEST(StoreReading, LimitsThatCannotBePlacedWithCertaintyAreNotPlacedAtAll)
{
    const QByteArray x = "prx?1x:" + kHead + SpecificationItems(1, 8) + ".\r\n\x11";
    const struct {
        const char *name;
        QByteArray y, z;
    } cases[] = {
        // One ";" too many: y's or z's own? Either join gives the record's fields.
        {"one part with a ';' of its own, one without",
         "prx?1y:XXXXXXXX;" + SpecificationItems(9, 16) + ".\r\n\x11",
         "prx?1z:XXXXXXXX" + SpecificationItems(17, 22) + ".\r\n\x11"},
        {"an empty last part", "prx?1y:XXXXXXXX;" + SpecificationItems(9, 16) + ".\r\n\x11",
         "prx?1z:XXXXXXXX.\r\n\x11"},
        {"items missing", "prx?1y:XXXXXXXX" + SpecificationItems(9, 15) + ".\r\n\x11",
         "prx?1z:XXXXXXXX" + SpecificationItems(17, 22) + ".\r\n\x11"},
        {"items too many", "prx?1y:XXXXXXXX" + SpecificationItems(9, 18) + ".\r\n\x11",
         "prx?1z:XXXXXXXX" + SpecificationItems(17, 22) + ".\r\n\x11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        StoreBench b;
        b.Step("prx?n", "prx?n= 1\r\n\x11");
        b.Step("prx?1x", x);
        b.Step("prx?1y", c.y);
        b.Step("prx?1z", c.z);
        const auto store = ReadSpecStore(b.s.link, b.s.prompter, b.trace);
        ASSERT_TRUE(store);
        EXPECT_TRUE(store->IsSpecification(1)) << "still listed as a specification";
        EXPECT_FALSE(store->limits.value(0));

        SpecEditor editor;
        editor.SetLimit(9, "<9.999mA");
        EXPECT_FALSE(editor.Decode(store->records[0], store->limits[0], 1));
        EXPECT_EQ(editor.record().codes[0], "10") << "the codes are read";
        EXPECT_EQ(editor.record().limits, BoxTexts{}) << "no box keeps or gets a guess";
    }
    EXPECT_TRUE(LimitsNotReadText(4).contains(QStringLiteral("Datensatz 4")));
}
