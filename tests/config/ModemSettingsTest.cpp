// The modem settings: five string registers in order, and the store with its confirmation.
#include "modem/ModemSettings.h"
#include "support/SimBench.h"

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
    };
    for (const auto &c : cases) {
        SimBench s;
        modem::WriteModemSettings(s.link, c.settings);
        EXPECT_EQ(s.Lines(), c.sent);
        // What was written is what the tester now holds, commas and blanks included.
        const modem::ModemSettings back = modem::ReadModemSettings(s.link);
        EXPECT_EQ(back.tel1, c.settings.tel1);
        EXPECT_EQ(back.tel2, c.settings.tel2);
        EXPECT_EQ(back.init, c.settings.init);
        EXPECT_TRUE(s.tester.model().working().strings.value(121).isEmpty());
    }
}

TEST(ModemSettings, StoreConfirmsOnlyWhatTheTesterKept)
{
    for (const bool refused : {false, true}) {
        SimBench s;
        modem::WriteModemSettings(s.link,
                                  {QStringLiteral("1"), QStringLiteral("2,3"), QStringLiteral("ATZ")});
        if (refused)
            s.tester.faults().add(QStringLiteral("refusestore:cfg!pgm"));
        EXPECT_EQ(modem::StoreModemSettings(s.link, s.prompter, QStringLiteral("gespeichert")), !refused);
        EXPECT_EQ(s.Lines().last(), QByteArray("cfg!pgm\r"));
        ASSERT_EQ(s.prompter.messages.size(), 1u);
        EXPECT_EQ(s.prompter.messages[0].text == QStringLiteral("gespeichert"), !refused);
        s.Restart();
        EXPECT_EQ(s.tester.model().working().strings.value(123), refused ? QByteArray() : QByteArray("2,3"));
    }
}
