// The modem settings: five string registers in order, and the store with its confirmation.
#include "modem/ModemSettings.h"
#include "support/ScriptedPrompter.h"
#include "support/ScriptedTransport.h"
#include "support/SimBench.h"

#include "link/Link.h"

#include <gtest/gtest.h>

using namespace kalvo;
using kalvo::testing::SimBench;

TEST(ModemSettings, FiveCommandsInOrderEmptyEntriesEndInAComma)
{
    const struct {
        modem::ModemSettings settings;
        QList<QByteArray> sent;
    } cases[] = {
        {{QStringLiteral("0711 4711"), QStringLiteral("0172 555"), QStringLiteral("AT&F")},
         {"str!121,\r", "str!122,0711 4711\r", "str!123,0172 555\r", "str!124,\r", "str!125,AT&F\r"}},
        {{}, {"str!121,\r", "str!122,\r", "str!123,\r", "str!124,\r", "str!125,\r"}},
        {{QString(), QStringLiteral("2,3"), QStringLiteral("ATZ")},
         {"str!121,\r", "str!122,\r", "str!123,2,3\r", "str!124,\r", "str!125,ATZ\r"}},
    };
    for (const auto &c : cases) {
        SimBench s;
        EXPECT_TRUE(modem::WriteModemSettings(s.link, c.settings).isEmpty());
        // Only the five writes: the tester has no command that reads the registers back.
        EXPECT_EQ(s.Lines(), c.sent);
        const auto &strings = s.tester.model().working().strings;
        EXPECT_EQ(strings.value(122), c.settings.tel1.toLatin1());
        EXPECT_EQ(strings.value(123), c.settings.tel2.toLatin1());
        EXPECT_EQ(strings.value(125), c.settings.init.toLatin1());
        EXPECT_TRUE(strings.value(121).isEmpty());
    }
}

TEST(ModemSettings, StoreConfirmsOnlyWhatTheTesterKept)
{
    for (const char *fault : {"", "refusestore:cfg!pgm", "refuse:cfg!pgm"}) {
        SCOPED_TRACE(fault);
        const bool refused = *fault != 0;
        SimBench s;
        modem::WriteModemSettings(s.link,
                                  {QStringLiteral("1"), QStringLiteral("2,3"), QStringLiteral("ATZ")});
        if (refused)
            s.tester.faults().add(QString::fromLatin1(fault));
        EXPECT_EQ(modem::StoreModemSettings(s.link, s.prompter, QStringLiteral("gespeichert")), !refused);
        EXPECT_EQ(s.Lines().last(), QByteArray("cfg!pgm\r"));
        ASSERT_FALSE(s.prompter.messages.empty());
        EXPECT_EQ(s.prompter.messages.back().text == QStringLiteral("gespeichert"), !refused);
        EXPECT_EQ(s.link.refusals(), refused ? 1 : 0);
        s.Restart();
        EXPECT_EQ(s.tester.model().working().strings.value(123), refused ? QByteArray() : QByteArray("2,3"));
    }
}

// A tester that refuses one register in its own words: the refusal is named, and nothing is
// stored unless the user agrees after reading it.
TEST(ModemSettings, ARefusedRegisterIsNamedBeforeAnythingIsStored)
{
    for (const bool agree : {false, true}) {
        SCOPED_TRACE(agree);
        link::ManualClock clock;
        kalvo::testing::ScriptedTransport transport(clock);
        kalvo::testing::ScriptedPrompter prompter;
        link::Link link(transport, prompter, clock);
        transport.Expect("str!121,\r").Reply("STR!121,.Y\r\n\x11");
        transport.Expect("str!122,0711\r").Reply("STR!122,0711 .N\r\n\x11");
        transport.Expect("str!123,\r").Reply("str!123, Protokoll .N\x11");
        transport.Expect("str!124,\r").ReplyByteByByte("str!124,.Y\x11");
        transport.Expect("str!125,AT\r").Reply("str!125,AT").Reply(".Y\x11", std::chrono::milliseconds(30));
        if (agree)
            transport.Expect("cfg!pgm\r").Reply("cfg!pgm.Y\x11");
        const auto refused =
            modem::WriteModemSettings(link, {QStringLiteral("0711"), QString(), QStringLiteral("AT")});
        EXPECT_EQ(refused, (QList<QByteArray>{"str!122,0711", "str!123,"}));
        prompter.confirmAnswers = {agree};
        EXPECT_EQ(modem::StoreModemSettings(link, prompter, QStringLiteral("gespeichert"), refused), agree);
        ASSERT_TRUE(prompter.calls.filter(QStringLiteral("confirmLoss:")).size() == 1);
        EXPECT_TRUE(prompter.calls.filter(QStringLiteral("confirmLoss:"))
                        .first()
                        .contains(QStringLiteral("\"str!122,0711\", \"str!123,\"")));
        EXPECT_TRUE(transport.allExpectationsMet());
    }
}
