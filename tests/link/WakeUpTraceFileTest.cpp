// Waking the tester, the development trace and sending a file byte by byte.
#include "LinkFixture.h"

#include "link/TextRules.h"
#include "support/TestFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

using namespace std::chrono_literals;
using namespace kalvo::link;

namespace kalvo::testing {
namespace {

TEST(WakeUp, PassesRepeatUntilThePromptStandsEarlyOrIsMissing)
{
    const struct {
        const char *name;
        std::vector<QByteArray> answers; // one per pass
    } cases[] = {
        {"no prompt at all", {"\r\n\x11"}},
        {"prompt at position 3", {"\r\n>\x11"}},
        {"prompt at position 9", {"12345678>\x11"}},
        {"prompt at position 10, then early", {"123456789>\x11", "\r\n>\x11"}},
        {"two late prompts, then none", {"0123456789ab>\x11", "0123456789>\x11", "\x11"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        for (const QByteArray &answer : c.answers) {
            s.transport.Expect("\r\r");
            s.transport.Expect("\x04\r");
            s.transport.Expect("\x07\r").Reply(answer);
        }
        s.link.WakeUp();
        EXPECT_TRUE(s.transport.allExpectationsMet());
        const auto &writes = s.transport.writes();
        ASSERT_EQ(writes.size(), 3 * c.answers.size());
        for (size_t i = 1; i < writes.size(); ++i)
            EXPECT_GE(writes[i].at - writes[i - 1].at, 100ms) << "before write " << i;
    }
}

TEST(Trace, EveryReceivedByteLandsInTheFileAndNothingElse)
{
    QTemporaryDir dir;
    const QString path = dir.filePath(QStringLiteral("trace.txt"));
    ScriptedLink s;
    s.link.StartTrace(path);
    s.transport.Expect("dis?\r").ReplyByteByByte("dis? 01.Y\r\n\x11");
    // An accessory's records back to back, "$FF" closing each: no line end that the tester did not send.
    s.transport.Expect("wer?\r").Reply("K1\x13"
                                       "0.5$FFK2\x13"
                                       "1.0$FF\n\x11");
    s.link.Exchange("dis?");
    s.link.Exchange("wer?");
    s.link.StopTrace();
    EXPECT_EQ(ReadFile(path), QByteArray("dis? 01.Y\r\n\x11K1\x13"
                                         "0.5$FFK2\x13"
                                         "1.0$FF\n\x11"));
}

TEST(SendFileRaw, FilesOfAHundredBytesOrLessCountAsMissingLongerOnesGoByteByByte)
{
    QTemporaryDir dir;
    const struct {
        const char *name;
        int size; // -1: no file
    } cases[] = {{"missing", -1}, {"100 bytes", 100}, {"101 bytes", 101}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = dir.filePath(QStringLiteral("%1.p").arg(c.size));
        QByteArray bytes;
        for (int i = 0; i < c.size; ++i)
            bytes.append(static_cast<char>(i * 7));
        if (c.size >= 0) {
            QFile file(path);
            ASSERT_TRUE(file.open(QIODevice::WriteOnly));
            file.write(bytes);
        }
        ScriptedLink s;
        for (qsizetype i = 0; c.size > 100 && i < bytes.size(); ++i) {
            auto &step = s.transport.Expect(bytes.mid(i, 1));
            if (i + 1 == bytes.size())
                step.Reply("prn .Y\x11");
        }
        const QByteArray answer = s.link.SendFileRaw(path);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(s.prompter.busyDepth, 0);
        if (c.size > 100) {
            EXPECT_EQ(answer, QByteArray("prn .Y\x11"));
            EXPECT_EQ(s.transport.writes().size(), size_t(c.size));
            EXPECT_TRUE(s.prompter.messages.empty());
        } else {
            EXPECT_TRUE(answer.isEmpty());
            EXPECT_TRUE(s.transport.writes().empty());
            ASSERT_EQ(s.prompter.messages.size(), 1u);
            EXPECT_EQ(s.prompter.messages[0].text, QDir::toNativeSeparators(path) + " nicht gefunden");
        }
    }
}

} // namespace
} // namespace kalvo::testing
