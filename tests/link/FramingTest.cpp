// Framing of one exchange: where an answer ends, when it times out, what follows it.
#include "LinkFixture.h"

#include "link/Errors.h"
#include "link/TextRules.h"

#include <optional>
#include <vector>

using namespace std::chrono_literals;
using namespace kalvo::link;

namespace kalvo::testing {
namespace {

using Framing = LinkFixture;

// Remembers what the link told about its waits; gives up waiting when told to.
struct WaitLog final : WaitObserver {
    explicit WaitLog(Link &link, bool giveUp = false) : link(link), giveUp(giveUp)
    {
        link.setWaitObserver(this);
    }
    ~WaitLog() override { link.setWaitObserver(nullptr); }
    void WaitStarted(Duration left, bool can) override
    {
        started.push_back(left);
        cancellable.push_back(can);
        if (giveUp)
            link.CancelWait();
    }
    void WaitEnded() override { ++ended; }
    Link &link;
    bool giveUp;
    std::vector<Duration> started;
    std::vector<bool> cancellable;
    int ended = 0;
};

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
    // A stream being written stops at its next block or line, too: nothing more goes out.
    for (const bool queued : {false, true}) {
        ScriptedLink s;
        s.link.Abandon();
        EXPECT_THROW(queued ? s.link.QueueRaw("line\r") : s.link.WriteRaw(QByteArray(100, 'x')), PortError);
        EXPECT_TRUE(s.transport.writes().empty());
        EXPECT_FALSE(s.link.IsOpen());
    }
}

TEST_F(Framing, AWaitOfMoreThanAMomentIsToldWithItsDeadlineAndWhetherItCanBeGivenUp)
{
    const struct {
        const char *name;
        std::optional<Duration> answerAfter; // none: silence
        bool inTransfer;
        int told; // how many waits were told (the rest of an answer is a wait of its own)
        bool cancellable;
    } cases[] = {
        {"quick answer", 5ms, false, 0, true},
        {"slow answer", 3s, false, 1, true},
        {"silence", std::nullopt, false, 1, true},
        {"silence in a transfer", std::nullopt, true, 1, false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        s.link.setTimeout(10s);
        WaitLog log(s.link);
        auto &step = s.transport.Expect("dis?\r");
        if (c.answerAfter)
            step.Reply("dis? 0.Y\x11", *c.answerAfter);
        std::optional<TransferScope> transfer;
        if (c.inTransfer)
            transfer.emplace(s.link);
        try {
            EXPECT_EQ(s.link.Exchange("dis?"), "dis? 0.Y\x11");
        } catch (const Timeout &) {
            EXPECT_FALSE(c.answerAfter);
        }
        ASSERT_EQ(static_cast<int>(log.started.size()), c.told);
        EXPECT_EQ(log.ended, c.told);
        if (c.told > 0) {
            // Told after the first slice of waiting: nearly the whole time-out is left.
            EXPECT_GT(log.started.front(), 9s);
            EXPECT_LT(log.started.front(), 10s);
            EXPECT_EQ(log.cancellable.front(), c.cancellable);
        }
    }
}

TEST_F(Framing, GivingUpEndsTheWaitAsATimeoutWouldExceptInATransfer)
{
    const struct {
        const char *name;
        bool inTransfer;
    } cases[] = {{"exchange", false}, {"transfer", true}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        s.link.setTimeout(10s);
        WaitLog log(s.link, true);
        s.transport.Expect("dis?\r");
        std::optional<TransferScope> transfer;
        if (c.inTransfer)
            transfer.emplace(s.link);
        try {
            s.link.Exchange("dis?");
            ADD_FAILURE() << "no Timeout";
        } catch (const Timeout &e) {
            EXPECT_EQ(e.message(), QStringLiteral("3:  Kein Kalvomer gefunden"));
        }
        EXPECT_FALSE(s.link.IsOpen());
        EXPECT_EQ(log.ended, 1);
        if (c.inTransfer)
            EXPECT_GE(s.clock.now(), 10s) << "a transfer must wait its whole time-out";
        else
            EXPECT_LT(s.clock.now(), 1s) << "giving up must end the wait at once";
    }

    // A give-up that no wait took up is forgotten when the next operation begins.
    ScriptedLink s;
    s.link.CancelWait();
    s.link.ForgetCancel();
    s.transport.Expect("dis?\r").Reply("dis? 0.Y\x11", 2s);
    EXPECT_EQ(s.link.Exchange("dis?"), "dis? 0.Y\x11");
}

} // namespace
} // namespace kalvo::testing
