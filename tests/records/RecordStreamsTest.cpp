// The streamed answers: the store listing and the accessory's records, in any chunks, slower in
// total than the time-out, with their progress, their numbers and the bytes they leave in files.
#include "ReadBench.h"
#include "RecordSamples.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "records/RecordFiles.h"
#include "records/RecordRetrieval.h"

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::records;
using kalvo::testing::ReadBench;
using kalvo::testing::ReadFile;
using kalvo::testing::RisesTo100;
using std::chrono::milliseconds;

namespace {

constexpr auto kTimeout = std::chrono::seconds(2);
// Each chunk comes this long after the one before: never a pause as long as the time-out, but
// far longer than it in total.
constexpr auto kChunkSpacing = milliseconds(1500);

// A bench whose link waits kTimeout; `fileName` holds an older read.
struct StreamBench : ReadBench {
    explicit StreamBench(const QString &fileName) : ReadBench(fileName) { s.link.setTimeout(kTimeout); }
};

// The accessory's identity and its answer to "esr?".
void ScriptAccessory(kalvo::testing::ScriptedTransport &transport, const QByteArray &count)
{
    transport.Expect("idn?\r").Reply("IDN? QRT4027 KYM\r\n\x11");
    transport.Expect("esr?\r").Reply(count);
}

// `bytes` in chunks of `size`, the first at once.
void ReplyInChunks(kalvo::testing::ScriptedTransport::Step &step, const QByteArray &bytes, qsizetype size)
{
    for (qsizetype at = 0, n = 0; at < bytes.size(); at += size, ++n)
        step.Reply(bytes.mid(at, size), n * kChunkSpacing);
}

// Specifications in any case, a record number with a blank and one with leading zeros, a device
// name in tester characters.
const QByteArray kListing =
    "DATABASE  Nr=1;01.01.09;08:00;VORGABE-A;Pr\x81"
    "fvorschrift;DIN VDE 0702;;;;;;;;"
    "PROTOKOLL Nr= 2;17.03.09;10:42;M\x81ller-4711;Typ;DIN VDE 0702;bestanden;;;;;;;\r\n"
    "Database  Nr=3;02.01.09;09:00;VORGABE-B;;;;;;;;;;"
    "PROTOKOLL Nr=007;18.03.09;11:00;A-7;;;;;;;;;;\r\n\x11";

QByteArray AccessoryRecord(int i)
{
    return "KKALVO\x13" + kalvo::testing::CodeString('1', '5') + "\x13M\x81ller-" + QByteArray::number(i) +
           "\x13<0.3\xea\x13$FF";
}

// The same record as it is kept: fields separated by ";", tester characters as Windows bytes.
QByteArray KeptRecord(int i)
{
    return "KKALVO;" + kalvo::testing::CodeString('1', '5') + ";M\xfcller-" + QByteArray::number(i) +
           ";<0.3Ohm;$FF\r\n";
}

} // namespace

TEST(ListingStream, ReadsTheSameInAnyChunksWithProgressAndNoTimeOutWhileChunksKeepComing)
{
    for (const qsizetype size :
         {qsizetype(1), qsizetype(2), qsizetype(5), qsizetype(13), qsizetype(64), kListing.size()}) {
        SCOPED_TRACE(size);
        StreamBench b(QStringLiteral("proto.txt"));
        auto &s = b.s;
        s.transport.Expect("prx?n\r").Reply("PRX?N=  2\r\n\x11");
        ReplyInChunks(s.transport.Expect("prx?nx\r"), kListing, size);
        const ListingResult result = ListStoreRecords(s.link, s.prompter, b.path);
        ASSERT_EQ(result.status, RetrievalStatus::Done);
        EXPECT_EQ(result.listing.records,
                  (QStringList{QStringLiteral("Müller-4711:2"), QStringLiteral("A-7:7")}));
        EXPECT_EQ(result.listing.numbers, (QList<int>{2, 7}));
        EXPECT_EQ(result.listing.rows.size(), 4);
        EXPECT_EQ(ReadFile(b.path), kListing);
        EXPECT_TRUE(RisesTo100(s.prompter.progressValues));
        if (size == 1) // the first test record's row has begun long before the stream ends
            EXPECT_NE(std::find(s.prompter.progressValues.begin(), s.prompter.progressValues.end(), 50),
                      s.prompter.progressValues.end());
    }
}

TEST(ListingStream, EntriesReachTheSinkInListingOrderWhileTheListingStillComes)
{
    for (const qsizetype size : {qsizetype(1), qsizetype(3), qsizetype(17), qsizetype(50), kListing.size()}) {
        SCOPED_TRACE(size);
        StreamBench b(QStringLiteral("proto.txt"));
        auto &s = b.s;
        s.transport.Expect("prx?n\r").Reply("PRX?N=  2\r\n\x11");
        ReplyInChunks(s.transport.Expect("prx?nx\r"), kListing, size);
        QStringList entries;
        QList<int> numbers;
        std::vector<link::Duration> seenAt;
        const ListingResult result =
            ListStoreRecords(s.link, s.prompter, b.path, [&](const QString &entry, int n) {
                entries << entry;
                numbers << n;
                seenAt.push_back(s.clock.now());
            });
        ASSERT_EQ(result.status, RetrievalStatus::Done);
        // Test records only, no "DATABASE" row, exactly as the finished listing has them.
        EXPECT_EQ(entries, (QStringList{QStringLiteral("Müller-4711:2"), QStringLiteral("A-7:7")}));
        EXPECT_EQ(entries, result.listing.records);
        EXPECT_EQ(numbers, result.listing.numbers);
        const qsizetype chunks = (kListing.size() + size - 1) / size;
        if (chunks > 1) { // the first entry is told before the listing's last chunk has come
            ASSERT_FALSE(seenAt.empty());
            EXPECT_LT(seenAt.front(), s.transport.writes().back().at + (chunks - 1) * kChunkSpacing);
        }
    }
}

TEST(ListingStream, AStubListingOfAnEmptyStoreTellsNoEntry)
{
    const struct {
        const char *name;
        QByteArray listing;
    } cases[] = {
        {"the command echoed", "prx?nx\r\n;\x11"},
        {"a row of empty fields", ";;;;;;;;;;;;;\r\n\x11"},
        {"a short first field with a name and a number", "Nr=1;;;LEER;;;;;;;;;;\r\n\x11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        StreamBench b(QStringLiteral("proto.txt"));
        auto &s = b.s;
        s.transport.Expect("prx?n\r").Reply("PRX?N=  1\r\n\x11");
        ReplyInChunks(s.transport.Expect("prx?nx\r"), c.listing, 3);
        QStringList entries;
        const ListingResult result = ListStoreRecords(s.link, s.prompter, b.path,
                                                      [&](const QString &entry, int) { entries << entry; });
        ASSERT_EQ(result.status, RetrievalStatus::Done);
        EXPECT_TRUE(result.listing.records.isEmpty());
        EXPECT_TRUE(entries.isEmpty()) << entries.join(' ').toStdString();
        EXPECT_EQ(ReadFile(b.path), c.listing);
    }
}

TEST(ListingStream, APauseLongerThanTheTimeOutOrABadNumberLeavesProtoTxt)
{
    const struct {
        const char *name;
        QByteArray listing;
        milliseconds pause; // before the second half
        bool timeout;       // else a FormatError
    } cases[] = {
        {"pause", kListing, milliseconds(2500), true},
        {"huge number", "PROTOKOLL Nr=99999999999;17.03.09;10:42;A;;;;;;;;;;\x11", milliseconds(10), false},
        {"no number", "PROTOKOLL Nr=;17.03.09;10:42;A;;;;;;;;;;\x11", milliseconds(10), false},
        {"number 0", "PROTOKOLL Nr=0;17.03.09;10:42;A;;;;;;;;;;\x11", milliseconds(10), false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        StreamBench b(QStringLiteral("proto.txt"));
        auto &s = b.s;
        const qsizetype half = c.listing.size() / 2;
        s.transport.Expect("prx?nx\r").Reply(c.listing.left(half)).Reply(c.listing.mid(half), c.pause);
        if (c.timeout)
            EXPECT_THROW(ReadStoreListing(s.link, s.prompter, b.path, 2), link::Timeout);
        else
            EXPECT_THROW(ReadStoreListing(s.link, s.prompter, b.path, 2), link::FormatError);
        EXPECT_TRUE(b.FileUnchanged());
    }
}

TEST(AccessoryStream, ReadsTheSameInAnyChunksAndKeepsWindowsBytesInLogTmp)
{
    const QByteArray stream = AccessoryRecord(1) + AccessoryRecord(2) + AccessoryRecord(3) + "\r\n\x11";
    const QList<QByteArray> kept{KeptRecord(1), KeptRecord(2), KeptRecord(3)};
    const struct {
        qsizetype size;
        QByteArray count; // the answer to "esr?"
    } cases[] = {{1, "esr?;3\r\n\x11"},
                 {3, "ESR?; 3\r\n\x11"},
                 {7, "esr?;003\r\n\x11"},
                 {40, "esr?;\t3.Y\x11"},
                 {stream.size(), "esr?;3\x11"}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.size);
        StreamBench b(QStringLiteral("log.tmp"));
        auto &s = b.s;
        ScriptAccessory(s.transport, c.count);
        ReplyInChunks(s.transport.Expect("wer?\r"), stream, c.size);
        QList<int> listed;
        const RetrievalResult result = ReadAccessoryRecords(
            s.link, s.prompter, b.path, [&](int number, const QByteArray &) { listed << number; });
        ASSERT_EQ(result.status, RetrievalStatus::Done);
        EXPECT_EQ(result.records, kept);
        EXPECT_EQ(listed, (QList<int>{1, 2, 3}));
        EXPECT_EQ(ReadFile(b.path), kept.join());
        EXPECT_TRUE(RisesTo100(s.prompter.progressValues));
        if (c.size < 100) { // records complete one by one
            for (const int step : {33, 66})
                EXPECT_NE(std::find(s.prompter.progressValues.begin(), s.prompter.progressValues.end(), step),
                          s.prompter.progressValues.end())
                    << step;
        }
    }
}

TEST(AccessoryStream, AnswersThatCannotBeTakenApartLeaveLogTmp)
{
    const struct {
        const char *name;
        QByteArray count;
        QByteArray stream; // empty: "wer?" must not be sent
        bool timeout = false;
    } cases[] = {
        {"huge count", "esr?;99999999999\r\n\x11", {}},
        {"count without its mark", "esr? 3\r\n\x11", {}},
        {"negative count", "esr?;-2\r\n\x11", {}},
        {"stream ends inside a record", "esr?;2\r\n\x11",
         AccessoryRecord(1) + "KA\x13"
                              "B$F\x11"},
        {"stream with no record", "esr?;2\r\n\x11", "\r\n\x11"},
        {"a pause longer than the time-out", "esr?;2\r\n\x11",
         AccessoryRecord(1) + AccessoryRecord(2) + "\x11", true},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        StreamBench b(QStringLiteral("log.tmp"));
        auto &s = b.s;
        ScriptAccessory(s.transport, c.count);
        if (c.timeout)
            s.transport.Expect("wer?\r").Reply(c.stream.left(20)).Reply(c.stream.mid(20), milliseconds(2500));
        else if (!c.stream.isEmpty())
            ReplyInChunks(s.transport.Expect("wer?\r"), c.stream, 9);
        if (c.timeout)
            EXPECT_THROW(ReadAccessoryRecords(s.link, s.prompter, b.path), link::Timeout);
        else
            EXPECT_THROW(ReadAccessoryRecords(s.link, s.prompter, b.path), link::FormatError);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(s.transport.writes().size(), c.stream.isEmpty() ? 2u : 3u);
        EXPECT_TRUE(b.FileUnchanged());
    }
}

TEST(Streams, JunkWithoutAnEndStopsWithinMinutesWhileAFullStoreIsReadWhole)
{
    // At 9600 baud a line sends 960 bytes a second; this one would go on for a day.
    const QByteArray second(960, 'x');
    constexpr int kADay = 24 * 3600;
    const auto withinMinutes = [](const kalvo::testing::ScriptedLink &s) {
        return s.clock.now() < std::chrono::minutes(10);
    };
    {
        SCOPED_TRACE("listing");
        StreamBench b(QStringLiteral("proto.txt"));
        b.s.transport.Expect("prx?nx\r").Stream(second, std::chrono::seconds(1), kADay);
        try {
            ReadStoreListing(b.s.link, b.s.prompter, b.path, 14);
            ADD_FAILURE() << "a listing without end was taken";
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.message().contains(QStringLiteral("131 Einträge"))) << e.message().toStdString();
        }
        EXPECT_TRUE(withinMinutes(b.s));
        EXPECT_TRUE(b.FileUnchanged());
    }
    {
        SCOPED_TRACE("accessory");
        StreamBench b(QStringLiteral("log.tmp"));
        ScriptAccessory(b.s.transport, "esr?;3\r\n\x11");
        b.s.transport.Expect("wer?\r").Stream(second, std::chrono::seconds(1), kADay);
        try {
            ReadAccessoryRecords(b.s.link, b.s.prompter, b.path);
            ADD_FAILURE() << "an accessory stream without end was taken";
        } catch (const link::FormatError &e) {
            EXPECT_TRUE(e.message().contains(QStringLiteral("3 angekündigte Protokolle")))
                << e.message().toStdString();
        }
        EXPECT_TRUE(withinMinutes(b.s));
        EXPECT_TRUE(b.FileUnchanged());
    }
    {
        SCOPED_TRACE("a full store with long names, and records near their size");
        StreamBench b(QStringLiteral("proto.txt"));
        QByteArray listing;
        for (int i = 1; i <= kStoreCapacity; ++i) {
            listing += "PROTOKOLL Nr=" + QByteArray::number(i) + ';';
            for (int field = 1; field < StoreListing::kRowFields; ++field)
                listing += QByteArray(120, 'A' + field) + ';';
        }
        listing += "\r\n\x11";
        ReplyInChunks(b.s.transport.Expect("prx?nx\r"), listing, 4096);
        const std::optional<StoreListing> read =
            ReadStoreListing(b.s.link, b.s.prompter, b.path, kStoreCapacity);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->records.size(), kStoreCapacity);

        StreamBench a(QStringLiteral("log.tmp"));
        ScriptAccessory(a.s.transport, "esr?;2\r\n\x11");
        const QByteArray big = "KKALVO\x13" + kalvo::testing::CodeString('1', '5') + "\x13" +
                               QByteArray(12 * 1024, 'M') + "\x13$FF";
        ReplyInChunks(a.s.transport.Expect("wer?\r"), big + big + "\r\n\x11", 4096);
        EXPECT_EQ(ReadAccessoryRecords(a.s.link, a.s.prompter, a.path).records.size(), 2);
    }
}
