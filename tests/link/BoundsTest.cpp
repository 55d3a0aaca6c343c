// Every wait has a deadline and every answer a size limit; refusals are counted; numbers never wrap.
#include "LinkFixture.h"

#include "link/Errors.h"
#include "link/TextRules.h"

#include <cmath>

using namespace kalvo::link;
using namespace std::chrono_literals;

namespace kalvo::testing {
namespace {

TEST_F(LinkFixture, ALineThatStopsTakingBytesEndsInTheTimeoutAndClosesThePort)
{
    link.setTimeout(5s);
    transport.Expect("idn!1,NAME\r").Stall();
    EXPECT_THROW(link.Exchange("idn!1,NAME"), Timeout);
    EXPECT_EQ(clock.now(), Duration(5s));
    EXPECT_FALSE(link.IsOpen());
}

TEST_F(LinkFixture, AnAnswerThatNeverEndsIsCutAtItsLimitWithTheCommandNamed)
{
    // 64 KB bursts a millisecond apart: the limit is reached long before the time-out.
    const QByteArray burst(64 * 1024, 'A');
    transport.Expect("ver?\r").Stream(burst, 1ms, static_cast<int>(kMaxAnswerBytes / burst.size()) + 2);
    try {
        link.Exchange("ver?");
        FAIL() << "an endless answer was taken";
    } catch (const FormatError &e) {
        EXPECT_TRUE(e.text().contains(QStringLiteral("ver?"))) << e.text().toStdString();
        EXPECT_TRUE(e.text().contains(QString::number(kMaxAnswerBytes))) << e.text().toStdString();
    }
    EXPECT_LT(clock.now(), Duration(1s));
    EXPECT_TRUE(link.IsOpen()); // the program goes on; the next command discards the rest
}

TEST_F(LinkFixture, AStreamMayTakeLongerThanOneTimeoutAsLongAsNoPauseDoes)
{
    link.setTimeout(2s);
    // 30 chunks 1.5 s apart: 45 s in all, far beyond one time-out, never a pause of 2 s.
    QList<int> chunkSizes;
    transport.Expect("prx?nx\r").Stream("PROTOKOLL Nr=1;", 1500ms, 30).Reply(";\x11", 44500ms);
    const QByteArray stream =
        link.ExchangeStream("prx?nx", [&](const QByteArray &chunk) { chunkSizes << int(chunk.size()); });
    EXPECT_EQ(stream.count("PROTOKOLL"), 30);
    EXPECT_TRUE(stream.endsWith(";\x11"));
    EXPECT_EQ(chunkSizes.size(), 31);
    EXPECT_TRUE(link.IsOpen());
}

TEST_F(LinkFixture, AStreamThatPausesLongerThanTheTimeoutEndsInIt)
{
    link.setTimeout(2s);
    transport.Expect("wer?\r").Reply("K;a;b$FF").Reply("K;c", 1s).Reply("$FF\x11", 3500ms);
    EXPECT_THROW(link.ExchangeStream("wer?"), Timeout);
    EXPECT_EQ(clock.now(), Duration(3s)); // 2 s after the last chunk
    EXPECT_FALSE(link.IsOpen());
}

TEST_F(LinkFixture, AStreamIsKeptOnlyUpToItsTerminatorAndItsRefusalIsCounted)
{
    transport.Expect("prx?nx\r").Reply("prx?nx Protok").Reply("oll .N\r\n\x11junk for later");
    const QByteArray stream = link.ExchangeStream("prx?nx");
    EXPECT_EQ(stream, QByteArray("prx?nx Protokoll .N\r\n\x11"));
    EXPECT_EQ(link.refusals(), 1);
    EXPECT_EQ(link.refusedCommands(), QList<QByteArray>{"prx?nx"});
    ASSERT_EQ(prompter.messages.size(), 1u);
    EXPECT_EQ(prompter.messages[0].icon, Prompter::Icon::Critical);
}

TEST_F(LinkFixture, AStreamOfRecordsThatMentionsBothWordsIsNoRefusal)
{
    // A repair text may well say "Protokoll" and "Nr.N..."; only an answer as short as a refusal is one.
    const QByteArray record = "K;Kalvomer;Protokoll Nr.N 17 neu;" + QByteArray(100, 'x') + "$FF";
    transport.Expect("wer?\r").Reply(record).Reply("\x11", 10ms);
    EXPECT_EQ(link.ExchangeStream("wer?"), record + '\x11');
    EXPECT_EQ(link.refusals(), 0);
    EXPECT_TRUE(prompter.messages.empty());
}

TEST_F(LinkFixture, RefusalsAreCountedPerCommandAndAWatchSeesOnlyItsOwn)
{
    transport.Expect("idn!99\r").Reply("idn!99 .Y\x11");
    transport.Expect("kal!ein\r").Reply("kal!ein Protokoll .Nx\r\n\x11");
    link.Exchange("idn!99");
    EXPECT_EQ(link.refusals(), 0);
    const RefusalWatch watch(link);
    EXPECT_FALSE(watch.refused());
    link.Exchange("kal!ein");
    link.NoteRefusal("kal!pgm");
    EXPECT_TRUE(watch.refused());
    EXPECT_EQ(watch.commands(), (QList<QByteArray>{"kal!ein", "kal!pgm"}));
    EXPECT_EQ(watch.Describe(), QStringLiteral("\"kal!ein\", \"kal!pgm\""));
    EXPECT_EQ(RefusalWatch(link, 1).commands(), QList<QByteArray>{"kal!pgm"});
}

TEST(RefusalCount, StaysRightBeyondTheCommandsItKeeps)
{
    ScriptedLink s;
    for (int i = 0; i < kKeptRefusals + 10; ++i)
        s.link.NoteRefusal("var!D" + QByteArray::number(i));
    EXPECT_EQ(s.link.refusals(), kKeptRefusals + 10);
    const QList<QByteArray> last = s.link.refusedCommands(kKeptRefusals + 8);
    EXPECT_EQ(last, (QList<QByteArray>{"var!D" + QByteArray::number(kKeptRefusals + 8),
                                       "var!D" + QByteArray::number(kKeptRefusals + 9)}));
    EXPECT_EQ(s.link.refusedCommands(0).size(), kKeptRefusals);
}

TEST(WholeNumber, ReadsTheLeadingNumberAndRefusesWhatIsMissingOrOutOfRange)
{
    const struct {
        QByteArray text;
        qint64 minimum, maximum;
        std::optional<qint64> value;
    } cases[] = {
        {"  14", 0, 1000, 14},
        {"007", 0, 1000, 7},
        {"12.9 mA", 0, 1000, 12},
        {"-3", -10, 10, -3},
        {"+3", -10, 10, 3},
        {"&HFF", 0, 255, 255},
        {"&hff.Y", 0, 255, 255},
        {"&H100", 0, 255, std::nullopt},
        {"99999999999", 0, 2147483647, std::nullopt},
        {"&HFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF", 0, 2147483647, std::nullopt},
        {"99999999999999999999999999999999", 0, qint64(1) << 62, std::nullopt},
        {"9007199254740993", 0, qint64(1) << 62, std::nullopt},
        {"9007199254740992", 0, qint64(1) << 62, qint64(1) << 53},
        {"", 0, 10, std::nullopt},
        {"=5", 0, 10, std::nullopt},
        {"&H", 0, 10, std::nullopt},
        {"-", 0, 10, std::nullopt},
        {"-1", 0, 10, std::nullopt},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.toStdString());
        EXPECT_EQ(WholeNumber(c.text, c.minimum, c.maximum), c.value);
    }
}

TEST(NumericValue, HugeHexadecimalNumbersStayLargeInsteadOfWrapping)
{
    const double value = NumericValue("&H" + QByteArray(40, 'F'));
    EXPECT_TRUE(std::isfinite(value));
    EXPECT_GT(value, 1e47);
}

TEST(FormatErrorForAnswer, NamesTheCommandWhatCameAndWhatWasExpected)
{
    const FormatError short_ =
        FormatError::ForAnswer("kal? 25", "kal? 25;25-6,0.9993.Y\x11", QStringLiteral("n:a,b"));
    EXPECT_EQ(short_.text(),
              QStringLiteral("Antwort auf kal? 25 \"kal? 25;25-6,0.9993.Y\\x11\": erwartet n:a,b"));
    const FormatError long_ = FormatError::ForAnswer("ver?", QByteArray(1000, 'x'), QStringLiteral("Felder"));
    EXPECT_TRUE(long_.text().contains(QStringLiteral("(1000 Bytes)"))) << long_.text().toStdString();
    EXPECT_LT(long_.text().size(), 200);
}

} // namespace
} // namespace kalvo::testing
