// Framing of one exchange: where an answer ends, when it times out, what follows it.
#include "LinkFixture.h"

#include "link/Errors.h"
#include "link/TextRules.h"

using namespace std::chrono_literals;
using namespace kalvo::link;

namespace kalvo::testing {
namespace {

using Framing = LinkFixture;

TEST_F(Framing, AnswerInSingleBytesIsCollectedWholeAndMayOutlastTheTimeoutFromTheCommand)
{
    // Twelve bytes, the first after 30 s, then one per second: complete 41 s after the command,
    // which is fine because the answer's own 40 s start at its first character.
    const QByteArray answer = "dis? 01.Y\r\n\x11";
    transport.Expect("dis?\r").ReplyByteByByte(answer, 1s, 30s);
    EXPECT_EQ(link.Exchange("dis?"), answer);
    EXPECT_EQ(clock.now(), 41s);
}

TEST_F(Framing, OnlyTheFirstAnswerOfABurstIsReturnedAndTheRestIsDropped)
{
    const struct {
        const char *name;
        QByteArray burst;
    } cases[] = {
        {"two answers in one read", QByteArray("ver?;1\x11") + "idn?;2\x11"},
        {"junk after the terminator", QByteArray("ver?;1\x11") + "\r\n>garbage"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        s.transport.Expect("ver?\r").Reply(c.burst);
        s.transport.Expect("idn?\r").Reply("idn?;3\x11", 5ms);
        EXPECT_EQ(s.link.Exchange("ver?"), QByteArray("ver?;1\x11"));
        EXPECT_EQ(s.link.Exchange("idn?"), QByteArray("idn?;3\x11"));
    }
}

TEST_F(Framing, StrayBytesBeforeACommandAreNotPartOfItsAnswer)
{
    transport.Arrive("KEY 1\r\n");
    transport.Expect("mes!0\r").Reply("mes!0 .Y\x11", 10ms);
    EXPECT_EQ(link.Exchange("mes!0"), QByteArray("mes!0 .Y\x11"));
}

TEST_F(Framing, SilenceEndsInTimeoutThreeAfterTheTimeoutAndClosesThePort)
{
    const struct {
        Duration timeout;
    } cases[] = {{kAnswerTimeout}, {2s}};
    for (const auto &c : cases) {
        ScriptedLink s;
        s.link.setTimeout(c.timeout);
        s.transport.Expect("dis?\r");
        try {
            s.link.Exchange("dis?");
            ADD_FAILURE() << "no Timeout";
        } catch (const Timeout &e) {
            EXPECT_EQ(e.number(), 3);
            EXPECT_EQ(e.message(), QStringLiteral("3:  Kein Kalvomer gefunden"));
        }
        EXPECT_GE(s.clock.now(), c.timeout);
        EXPECT_LT(s.clock.now(), c.timeout + 1s);
        EXPECT_FALSE(s.link.IsOpen());
    }
}

TEST_F(Framing, EndlessAnswerEndsFortySecondsAfterItsFirstCharacter)
{
    // The stream would go on for 200 s: a deadline that restarted at every byte would show.
    transport.Expect("prx?nx\r").Stream("rec;", 1s, 200, 5s);
    EXPECT_THROW(link.Exchange("prx?nx"), Timeout);
    EXPECT_GE(clock.now(), 5s + kAnswerTimeout);
    EXPECT_LT(clock.now(), 5s + kAnswerTimeout + 1s);
    EXPECT_FALSE(transport.isOpen());
}

TEST_F(Framing, StoreEchoPausesAndRefusalIsReportedButTheAnswerStillReturned)
{
    const struct {
        QByteArray answer;
        bool pause;
        bool refusal;
    } cases[] = {
        {"cfg!pgm .Y\r\n\x11", true, false},     {"cfg!pgm Protokoll .N\x11", false, true},
        {"cfg!pgm Protokoll\x11", false, false}, {"kal!pgm .Y\x11", false, false},
        {"wer?bgw .N\x11", false, false},        {"Protokoll .Nx\x11", false, true},
    };
    link.setProtocolError(31995, QStringLiteral("Identstring fehlerhaft"));
    for (const auto &c : cases) {
        SCOPED_TRACE(EscapeBytes(c.answer).toStdString());
        prompter.messages.clear();
        transport.Expect("x\r").Reply(c.answer);
        const Duration before = clock.now();
        EXPECT_EQ(link.Exchange("x"), c.answer);
        if (c.pause)
            EXPECT_GE(clock.now() - before, 100ms);
        else
            EXPECT_EQ(clock.now(), before);
        if (c.refusal) {
            ASSERT_EQ(prompter.messages.size(), 1u);
            EXPECT_EQ(prompter.messages[0].text, QStringLiteral("31995:  Identstring fehlerhaft"));
            EXPECT_EQ(prompter.messages[0].icon, Prompter::Icon::Critical);
        } else {
            EXPECT_TRUE(prompter.messages.empty());
        }
    }
}

TEST_F(Framing, ClosedPortSendsNothingReceivesNothingAndSaysSoOnce)
{
    EXPECT_FALSE(link.PortClosed());
    EXPECT_TRUE(prompter.messages.empty());

    link.ClosePort();
    link.setPortNotOpenText(QStringLiteral("Port nicht offen"));
    link.SendCommand("dis?\r");
    EXPECT_EQ(link.ReceiveAnswer(), QByteArray());
    EXPECT_TRUE(transport.writes().empty());
    EXPECT_EQ(clock.now(), Duration::zero());
    EXPECT_TRUE(prompter.messages.empty());

    EXPECT_TRUE(link.PortClosed());
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].text, QStringLiteral("Port nicht offen"));
}

TEST_F(Framing, VanishedDeviceClosesThePortAndPropagates)
{
    transport.Expect("dis?\r").Reply("dis", 1s).Vanish(2s);
    try {
        link.Exchange("dis?");
        ADD_FAILURE() << "no PortError";
    } catch (const PortError &e) {
        EXPECT_EQ(e.kind(), PortError::Kind::Lost);
    }
    EXPECT_FALSE(link.IsOpen());
    EXPECT_LT(clock.now(), kAnswerTimeout);
}

TEST_F(Framing, AnAbandonedLinkGivesUpInsteadOfWaitingAndClosesThePort)
{
    // Silence: the link waits in slices; once abandoned it gives up at the next one.
    transport.Expect("dis?\r");
    link.SendCommand("dis?\r");
    link.Abandon();
    EXPECT_THROW(link.ReceiveAnswer(), PortError);
    EXPECT_FALSE(link.IsOpen());
    EXPECT_LT(clock.now(), std::chrono::seconds(1));
}

} // namespace
} // namespace kalvo::testing
