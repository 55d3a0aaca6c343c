// The virtual tester's side of test specifications: "prx!add " chunks in either split, the
// "DATABASE" records read back, deletion with renumbering, and a store of both kinds.
#include "sim/RecordStore.h"
#include "sim/SampleRecords.h"
#include "sim/VirtualTester.h"

#include <gtest/gtest.h>

using namespace kalvo;

namespace {

const QByteArray kCodes = "0000000000001000200000000000050200001F02";

struct Tester {
    link::ManualClock clock;
    sim::VirtualTester tester{clock};
    explicit Tester(int testRecords = 0)
    {
        tester.setBaud(0);
        store().KeepFirst(testRecords);
    }
    sim::RecordStore &store() { return tester.model().records(); }
    QByteArray Ask(const QByteArray &line)
    {
        tester.feed(line + '\r');
        return tester.takeOutput(clock.now());
    }
    bool Taken(const QByteArray &line) { return Ask(line) == line + ".Y\r\n\x11"; }
};

QByteArray Items(int first, int last, const QByteArray &limit = {})
{
    QByteArray text;
    for (int i = first; i <= last; ++i)
        text += ";;" + (limit.isEmpty() ? QByteArray() : limit + QByteArray::number(i % 10));
    return text;
}

const QByteArray kHead = "01 Werkstatt; ;" + kCodes + ";04.03.09;9:5:7";

} // namespace

TEST(SpecificationStore, BothSplitsStoreTheSameRecord)
{
    const struct {
        const char *name;
        QList<QByteArray> chunks;
    } splits[] = {
        {"editor",
         {kHead + Items(1, 8, "<0.50mA"), "&9" + Items(9, 16, "<0.50mA"), "&17" + Items(17, 22, "<0.50mA")}},
        {"set file", {kHead, "&1" + Items(1, 12, "<0.50mA"), "&13" + Items(13, 22, "<0.50mA")}},
    };
    QList<QByteArray> parts[2];
    for (int s = 0; s < 2; ++s) {
        SCOPED_TRACE(splits[s].name);
        Tester t;
        for (const QByteArray &chunk : splits[s].chunks) {
            EXPECT_EQ(t.store().count(), 0) << "stored only once complete";
            EXPECT_TRUE(t.Taken("prx!add " + chunk));
        }
        ASSERT_EQ(t.store().count(), 1);
        EXPECT_EQ(t.Ask("prx?n"), "prx?n= 1\r\n\x11");
        for (const char part : {'x', 'y', 'z'})
            parts[s] << t.Ask("prx?1" + QByteArray(1, part));
    }
    EXPECT_EQ(parts[0], parts[1]);
    EXPECT_EQ(parts[0][0], "prx?1x:;DATABASE  Nr=1;" + kCodes + ";01 Werkstatt;04.03.09;9:5:7" +
                               Items(1, 8, "<0.50mA") + ".\r\n\x11");
    EXPECT_EQ(parts[0][1], "prx?1y:XXXXXXXX;" + Items(9, 16, "<0.50mA") + ".\r\n\x11");
    EXPECT_EQ(parts[0][2], "prx?1z:XXXXXXXX;" + Items(17, 22, "<0.50mA") + ".\r\n\x11");
}

TEST(SpecificationStore, ChunksOutOfPlaceOrMalformedAreRefusedAndStoreNothing)
{
    const struct {
        const char *name;
        QList<QByteArray> taken; // sent before, each taken
        QByteArray refused;
    } cases[] = {
        {"continuation without a beginning", {}, "&9" + Items(9, 16)},
        {"continuation at the wrong item", {kHead + Items(1, 8)}, "&13" + Items(13, 22)},
        {"too many items", {kHead + Items(1, 8)}, "&9" + Items(9, 23)},
        {"half an item", {kHead + Items(1, 8)}, "&9;;<0.500mA;"},
        {"limit too long", {kHead}, "&1;;<0.5000mA" + Items(2, 12)},
        {"lower-case codes", {}, "01 A; ;" + kCodes.toLower() + ";04.03.09;9:5:7"},
        {"short code string", {}, "01 A; ;" + kCodes.left(38) + ";04.03.09;9:5:7"},
        {"no blank field", {}, "01 A;" + kCodes + ";04.03.09;9:5:7"},
        {"bad date", {}, "01 A; ;" + kCodes + ";4.3.2009;9:5:7"},
        {"bad time", {}, "01 A; ;" + kCodes + ";04.03.09;25:0:0"},
        {"no name", {}, "; ;" + kCodes + ";04.03.09;9:5:7"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        Tester t;
        for (const QByteArray &chunk : c.taken)
            EXPECT_TRUE(t.Taken("prx!add " + chunk));
        EXPECT_EQ(t.Ask("prx!add " + c.refused), "prx!add " + c.refused + " Protokoll .N\r\n\x11");
        EXPECT_EQ(t.store().count(), 0);
    }
}

TEST(SpecificationStore, ANewBeginningForgetsAnUnfinishedRecord)
{
    Tester t;
    EXPECT_TRUE(t.Taken("prx!add " + kHead + Items(1, 8)));
    EXPECT_TRUE(t.Taken("prx!add 02 B; ;" + kCodes + ";04.03.09;9:5:7" + Items(1, 8)));
    EXPECT_TRUE(t.Taken("prx!add &9" + Items(9, 16)));
    EXPECT_TRUE(t.Taken("prx!add &17" + Items(17, 22)));
    ASSERT_EQ(t.store().count(), 1);
    EXPECT_EQ(t.store().specifications()[0].label, "02 B");
}

TEST(SpecificationStore, DeletionRenumbersTheEntriesBehind)
{
    Tester t(3);
    t.store().setSpecifications(sim::SampleSpecifications());
    const auto records = t.store().records();
    ASSERT_EQ(t.store().count(), 5);
    EXPECT_EQ(t.Ask("prx?n"), "prx?n= 5\r\n\x11");
    EXPECT_TRUE(t.Ask("prx?2x").startsWith("prx?2x:;DATABASE  Nr=2;"));
    EXPECT_TRUE(t.Ask("prx?3x").startsWith("prx?3x:" + records[0].left(10)));

    EXPECT_TRUE(t.Taken("prx!del 1"));
    EXPECT_EQ(t.Ask("prx?n"), "prx?n= 4\r\n\x11");
    EXPECT_TRUE(t.Ask("prx?1x").startsWith("prx?1x:;DATABASE  Nr=1;"));
    EXPECT_TRUE(t.Ask("prx?2x").startsWith("prx?2x:" + records[0].left(10)));
    EXPECT_TRUE(t.Ask("prx?nx").startsWith("DATABASE  Nr=1;"));

    for (const QByteArray &bad :
         {QByteArray("prx!del 5"), QByteArray("prx!del 0"), QByteArray("prx!del"), QByteArray("prx!del x")})
        EXPECT_EQ(t.Ask(bad), bad + " Protokoll .N\r\n\x11");
    for (const char *command : {"prx!del 4", "PRX!DEL 3", "prx!del  2", "prx!del1"})
        EXPECT_TRUE(t.Taken(command)) << command;
    EXPECT_EQ(t.store().count(), 0);
    EXPECT_EQ(t.Ask("prx?nx"), "\x11");
}

TEST(SpecificationStore, AFullStoreRefusesANewRecord)
{
    Tester t;
    for (int i = 0; i < sim::RecordStore::kCapacity; ++i) {
        const QByteArray label = QByteArray::number(i + 1).rightJustified(2, '0') + " S";
        ASSERT_TRUE(t.Taken("prx!add " + label + "; ;" + kCodes + ";04.03.09;9:5:7" + Items(1, 22)));
    }
    EXPECT_EQ(t.store().count(), sim::RecordStore::kCapacity);
    EXPECT_FALSE(t.Taken("prx!add " + kHead + Items(1, 22)));
    EXPECT_EQ(t.store().count(), sim::RecordStore::kCapacity);
}

TEST(SpecificationStore, TestRecordsAndSpecificationsShareTheNumbers)
{
    Tester t(2);
    EXPECT_TRUE(t.Taken("prx!add " + kHead + Items(1, 22)));
    EXPECT_EQ(t.Ask("prx?n"), "prx?n= 3\r\n\x11");
    EXPECT_TRUE(t.Ask("prx?3x").startsWith("prx?3x:;DATABASE  Nr=3;"));
    EXPECT_TRUE(t.Ask("prx?nx").contains("PROTOKOLL Nr=2;"));
    EXPECT_TRUE(t.Ask("prx?nx").contains("DATABASE  Nr=3;"));
    // A specification is no test record: it cannot be printed.
    EXPECT_TRUE(t.Ask("prn!1,3").contains(" Protokoll .N"));
    EXPECT_TRUE(t.Ask("prn!1,2").contains("\x05"));
}
