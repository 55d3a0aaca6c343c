// The virtual tester's record store, print texts and KYM accessory, read the way the PC reads them.
#include "sim/RecordStore.h"
#include "link/Link.h"
#include "link/PortNames.h"
#include "sim/PrintRenderer.h"
#include "sim/RecordText.h"
#include "sim/SampleRecords.h"
#include "sim/SimTransport.h"
#include "sim/VirtualTester.h"
#include "support/ScriptedPrompter.h"

#include <QDate>
#include <QSet>
#include <QTime>
#include <functional>
#include <gtest/gtest.h>

using namespace kalvo;

namespace {

constexpr char kDC1 = '\x11';
const QByteArray kTrailer = ".\r\n\x11";

struct Bench {
    explicit Bench(int baud = 9600)
    {
        tester.setBaud(baud);
        link.OpenPort(link::kSimulatorPortName);
    }

    link::ManualClock clock;
    sim::VirtualTester tester{clock};
    sim::SimTransport transport{tester, clock};
    kalvo::testing::ScriptedPrompter prompter;
    link::Link link{transport, prompter, clock};

    sim::RecordStore &store() { return tester.model().records(); }
    QByteArray Ask(const QByteArray &command) { return link.Exchange(command); }
};

// One record over the wire, taken apart as the PC does: behind the first mark, the filler of y and z
// skipped, the 4-character trailer cut off each chunk; "$FF" closes it.
QByteArray FetchRecord(Bench &bench, const QByteArray &index, char mark, bool filler)
{
    QByteArray record;
    for (const char part : {'x', 'y', 'z'}) {
        const QByteArray answer = bench.Ask("prx?" + index + part);
        EXPECT_TRUE(answer.endsWith(kTrailer)) << answer.toStdString();
        qsizetype start = answer.indexOf(mark) + 1;
        if (filler && part != 'x') {
            EXPECT_EQ(answer.mid(start, 8), "XXXXXXXX");
            start += 8;
        }
        record += answer.mid(start);
        record.chop(kTrailer.size());
    }
    return record + "$FF";
}

QList<QList<QByteArray>> ListingRows(QByteArray listing)
{
    EXPECT_TRUE(listing.endsWith(QByteArray(";") + kDC1));
    listing.chop(1);
    QList<QByteArray> fields = listing.split(';');
    fields.removeLast(); // behind the last ";"
    EXPECT_EQ(fields.size() % 13, 0);
    QList<QList<QByteArray>> rows;
    for (qsizetype i = 0; i + 13 <= fields.size(); i += 13)
        rows << fields.mid(i, 13);
    return rows;
}

QByteArray PrintText(const QByteArray &answer)
{
    const qsizetype start = answer.indexOf('\x05');
    const qsizetype end = answer.indexOf('\x0C', start);
    return answer.mid(start + 1, end - start - 1);
}

} // namespace

TEST(RecordStore, EveryRecordJoinsFromItsThreePartsOverTheLink)
{
    Bench bench;
    const QList<QByteArray> &stored = bench.store().records();
    ASSERT_GE(stored.size(), 12);
    const QByteArray count = bench.Ask("prx?n");
    EXPECT_EQ(count, "prx?n= " + QByteArray::number(stored.size()) + "\r\n" + kDC1);
    const int records = count.mid(count.indexOf('=') + 1).trimmed().toInt();
    for (int i = 1; i <= records; ++i)
        EXPECT_EQ(FetchRecord(bench, QByteArray::number(i), ':', true), stored[i - 1]) << i;

    EXPECT_EQ(bench.Ask("prx?"), QByteArray("prx?.Y\r\n") + kDC1);
    EXPECT_EQ(FetchRecord(bench, {}, '=', false), *bench.store().current());
    EXPECT_TRUE(bench.prompter.messages.empty());
}

TEST(RecordStore, ThePartsOfAnyTextJoinBackWhateverItsLength)
{
    for (int length = 0; length < 40; ++length) {
        QByteArray text(1, 'P');
        for (int i = 0; i < length; ++i)
            text += static_cast<char>(i % 7 == 0 ? ';' : 'a' + i % 26);
        const QByteArray record = text + "$FF";
        QByteArray joined;
        qsizetype longest = 0, shortest = record.size();
        for (int part = 0; part < sim::RecordStore::kParts; ++part) {
            const QByteArray piece = sim::RecordStore::Part(record, part);
            joined += piece;
            longest = std::max(longest, piece.size());
            shortest = std::min(shortest, piece.size());
        }
        EXPECT_EQ(joined + "$FF", record) << length;
        EXPECT_LE(longest - shortest, 2) << length; // a third each
        // The odd style's cut: the same text, the last part empty.
        const bool emptyLast = true;
        EXPECT_EQ(sim::RecordStore::Part(record, 0, emptyLast) +
                      sim::RecordStore::Part(record, 1, emptyLast) + "$FF",
                  record)
            << length;
        EXPECT_TRUE(sim::RecordStore::Part(record, 2, emptyLast).isEmpty()) << length;
    }
}

TEST(RecordStore, AnswersOutsideTheStoreAreRefusedOrSayNo)
{
    struct Case {
        const char *name;
        std::function<void(sim::RecordStore &)> setUp;
        QByteArray line;
        QByteArray answer;
    };
    const QByteArray refused = " Protokoll .N\r\n\x11";
    const auto none = [](sim::RecordStore &) {};
    const auto empty = [](sim::RecordStore &s) {
        s.KeepFirst(0);
        s.setCurrent(std::nullopt);
        s.setAccessoryRecords({});
    };
    const Case cases[] = {
        {"record 0", none, "prx?0x", "prx?0x" + refused},
        {"one past the last", none, "prx?15y", "prx?15y" + refused},
        {"no part letter", none, "prx?3", "prx?3" + refused},
        {"template 5", none, "prn!5,1", "prn!5,1" + refused},
        {"record 99 to print", none, "prn!1,99", "prn!1,99" + refused},
        {"empty store counts 0", empty, "prx?n", "prx?n= 0\r\n\x11"},
        {"no current record", empty, "prx?", "prx?.N\r\n\x11"},
        {"no current record to read", empty, "prx?y", "prx?y" + refused},
        {"no current record to print", empty, "prn!2", "prn!2" + refused},
        {"first record of an emptied store", empty, "prx?1x", "prx?1x" + refused},
        {"accessory count without it", none, "esr?", "esr?" + refused},
        {"accessory stream without it", none, "wer?", "wer?" + refused},
        {"chosen template", none, "prn?", "prn? 1.Y\r\n\x11"},
        {"remote keys for printing", none, "tas!ron", "tas!ron.Y\r\n\x11"},
    };
    for (const Case &c : cases) {
        link::ManualClock clock;
        sim::VirtualTester tester(clock);
        c.setUp(tester.model().records());
        tester.feed(c.line + '\r');
        EXPECT_EQ(tester.takeOutput(clock.now()), c.answer) << c.name;
    }
}

TEST(RecordStore, ListingShowsSpecificationsAndRecordsInThirteenFieldRows)
{
    for (const int kept : {14, 3, 0}) {
        Bench bench;
        bench.store().setSpecifications(sim::SampleSpecifications());
        bench.store().KeepFirst(kept);
        const auto rows = ListingRows(bench.Ask("prx?nx"));
        const auto specs = bench.store().specifications();
        const auto records = bench.store().records();
        ASSERT_EQ(rows.size(), specs.size() + records.size()) << kept;
        int number = 0, specNumber = 0, recordNumber = 0;
        for (const auto &row : rows) {
            ++number;
            if (row[0].contains("DATABASE")) {
                EXPECT_EQ(row[0], "DATABASE  Nr=" + QByteArray::number(number));
                EXPECT_EQ(row[3], specs[specNumber++].label);
                continue;
            }
            EXPECT_EQ(row[0], "PROTOKOLL Nr=" + QByteArray::number(number)) << kept;
            const sim::RecordText record(records[recordNumber++]);
            EXPECT_EQ(row[1], record.Field(5));
            EXPECT_EQ(row[3], record.Field(3));
            EXPECT_EQ(row[4], record.Field(4));
            EXPECT_TRUE(row[5].startsWith("DIN VDE") || row[5].startsWith("EN ")) << row[5].toStdString();
            EXPECT_TRUE(row[6] == "bestanden" || row[6] == "nicht bestanden");
        }
        EXPECT_EQ(specNumber, 2);
        EXPECT_EQ(recordNumber, kept);
    }
}

TEST(RecordStore, PrintAnswersHoldAFramedReportBetweenEnqAndFormFeed)
{
    Bench bench(0);
    const auto &records = bench.store().records();
    const QByteArray boxBytes = "\xDA\xBF\xC0\xD9\xB3\xC4";
    for (const int index : {1, 5, 7, static_cast<int>(records.size())}) {
        const sim::RecordText record(records[index - 1]);
        QSet<QByteArray> texts;
        for (int t = 0; t < sim::PrintRenderer::kTemplates; ++t) {
            const QByteArray command = "prn!" + QByteArray::number(t) + "," + QByteArray::number(index);
            const QByteArray answer = bench.Ask(command);
            EXPECT_TRUE(answer.startsWith(command + "\r\n\x05")) << command.toStdString();
            EXPECT_TRUE(answer.endsWith("\x0C\r\n\x11")) << command.toStdString();
            const QByteArray text = PrintText(answer);
            for (char box : boxBytes)
                EXPECT_TRUE(text.contains(box)) << command.toStdString() << " lacks " << int(uchar(box));
            EXPECT_TRUE(text.contains(record.Field(3))) << command.toStdString();
            EXPECT_TRUE(text.contains("Ergebnis: " + record.Verdict())) << command.toStdString();
            EXPECT_EQ(text.count("\n"), text.count("\r\n")) << command.toStdString();
            for (char c : text)
                EXPECT_TRUE(uchar(c) >= 0x20 || c == '\r' || c == '\n') << command.toStdString();
            // The frame's right edge stands in one column: every framed line is as wide as its top.
            const QList<QByteArray> lines = text.split('\n');
            const qsizetype width = lines.first().size();
            for (const QByteArray &line : lines) {
                if (!line.startsWith('\xB3') && !line.startsWith('\xC3'))
                    continue;
                EXPECT_EQ(line.size(), width) << command.toStdString() << ": " << line.toStdString();
            }
            texts.insert(text);
        }
        EXPECT_EQ(texts.size(), sim::PrintRenderer::kTemplates) << "templates must differ, record " << index;
    }
    // Without a number the current record is printed.
    bench.store().setCurrent(records[2]);
    EXPECT_EQ(PrintText(bench.Ask("prn!3")), PrintText(bench.Ask("prn!3,3")));
    bench.tester.model().setPrintTemplate(4);
    EXPECT_EQ(bench.Ask("prn?"), QByteArray("prn? 4.Y\r\n\x11"));
}

TEST(RecordStore, AccessoryStreamsItsRecordsSeparatedByCharacter19)
{
    Bench bench;
    bench.tester.model().setKymInFront(true);
    const auto &stored = bench.store().accessoryRecords();
    ASSERT_GE(stored.size(), 4);
    EXPECT_EQ(bench.Ask("esr?"), "esr?;" + QByteArray::number(stored.size()) + "\r\n" + kDC1);

    QByteArray stream = bench.Ask("wer?");
    ASSERT_TRUE(stream.endsWith(kDC1));
    EXPECT_EQ(stream.count(kDC1), 1);
    stream.chop(1);
    QList<QByteArray> records = stream.split('$');
    ASSERT_EQ(records.size(), stored.size() + 1);
    for (qsizetype i = 0; i < stored.size(); ++i) {
        // Every record but the first starts behind the "FF" of the one before.
        QByteArray record = i == 0 ? records[0] : records[i].mid(2);
        ASSERT_TRUE(records[i + 1].startsWith("FF")) << i;
        EXPECT_TRUE(record.startsWith('K')) << i;
        EXPECT_FALSE(record.contains(';')) << i;
        EXPECT_EQ(record.count('\x13'), sim::RecordText::kFieldCount) << i;
        record.replace('\x13', ';');
        record[0] = 'P';
        const sim::RecordText fields(record + "$FF");
        EXPECT_EQ(record + "$FF", stored[i]) << i;
        for (int field = 55; field <= 65; ++field)
            EXPECT_FALSE(fields.Field(field).isEmpty()) << "record " << i << " field " << field;
    }
    EXPECT_EQ(records.last(), "FF");

    bench.store().setAccessoryRecords({});
    EXPECT_EQ(bench.Ask("esr?"), QByteArray("esr?;0\r\n") + kDC1);
    EXPECT_EQ(bench.Ask("wer?"), QByteArray(1, kDC1));
}

TEST(RecordStore, SampleRecordsDecodeToARealisticSpread)
{
    const sim::RecordStore store;
    QSet<int> regulations, classes;
    QSet<QByteArray> parts;
    int passed = 0, failed = 0, withAccessory = 0;
    QList<QByteArray> all = store.records() + store.accessoryRecords();
    for (const QByteArray &text : all) {
        const sim::RecordText record(text);
        const std::string id = record.Field(3).toStdString();
        EXPECT_TRUE(text.startsWith('P') && text.endsWith(";$FF")) << id;
        EXPECT_EQ(text.count(';'), sim::RecordText::kFieldCount) << id;
        for (const char forbidden : {'\r', '\n', '\x11', '\x13', '$'})
            EXPECT_FALSE(text.chopped(3).contains(forbidden)) << id << " holds " << int(forbidden);
        const QByteArray code = record.Field(2);
        EXPECT_GE(code.size(), 32) << id;
        bool hex = false;
        code.mid(6, 1).toInt(&hex, 16);
        EXPECT_TRUE(hex) << id;
        EXPECT_GE(record.RegulationCode(), 1) << id;
        EXPECT_LE(record.RegulationCode(), 9) << id;
        EXPECT_GE(record.ProtectionClass(), 1) << id;
        EXPECT_LE(record.ProtectionClass(), 3) << id;
        // Only medical equipment has applied parts.
        EXPECT_EQ(record.RegulationCode() == 6, !record.AppliedPart().isEmpty()) << id;
        EXPECT_TRUE(
            QDate::fromString(QString::fromLatin1(record.Field(5)), QStringLiteral("dd.MM.yy")).isValid())
            << id;
        EXPECT_TRUE(
            QTime::fromString(QString::fromLatin1(record.Field(6)), QStringLiteral("hh:mm")).isValid())
            << id;
        int measured = 0;
        for (int pair = 0; pair < sim::RecordText::kMeasurements; ++pair)
            measured += record.Field(sim::RecordText::kFirstMeasurement + 2 * pair).isEmpty() ? 0 : 1;
        EXPECT_GE(measured, 3) << id;
        regulations.insert(record.RegulationCode());
        classes.insert(record.ProtectionClass());
        parts.insert(record.AppliedPart());
        (record.Passed() ? passed : failed)++;
        if (!record.Field(sim::RecordText::kFirstAccessoryField).isEmpty()) {
            ++withAccessory;
            for (int field = 56; field <= 64; ++field)
                EXPECT_FALSE(record.Field(field).isEmpty()) << id << " field " << field;
        }
    }
    EXPECT_GE(store.records().size(), 12);
    EXPECT_GE(regulations.size(), 3);
    EXPECT_TRUE(classes.contains(1) && classes.contains(2) && classes.contains(3));
    EXPECT_TRUE(parts.contains("B") && parts.contains("BF") && parts.contains("CF"));
    EXPECT_GE(passed, 1);
    EXPECT_GE(failed, 1);
    EXPECT_GE(withAccessory, store.accessoryRecords().size() + 1);
    // Units and umlauts come in the tester's code page.
    const QByteArray joined = all.join();
    for (const char byte : {'\xEA', '\xE6', '\x81', '\x84', '\x94', '\xE1'})
        EXPECT_TRUE(joined.contains(byte)) << int(uchar(byte));
    EXPECT_EQ(store.current(), store.records().last());
}
