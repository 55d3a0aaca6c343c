// The line transfer and the character stream against a scripted tester: phases, odd chunks, errors.
#include "UpdateScript.h"

#include "../link/LinkFixture.h"
#include "link/Errors.h"
#include "support/TestFiles.h"
#include "update/HexFile.h"
#include "update/LoaderReport.h"
#include "update/Transfers.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace std::chrono_literals;
using namespace kalvo::link;
using namespace kalvo::update;

namespace kalvo::testing {
namespace {

HexFile Hex(int dataLines)
{
    return HexFile::FromBytes(QStringLiteral("/pkg/med.hex"), JoinLines(HexLines(dataLines)));
}

// Runs `send` and returns the message of the KalvoError it throws (empty when none).
template <typename Send> std::pair<int, QString> Failure(Send send)
{
    try {
        send();
    } catch (const KalvoError &e) {
        return {e.number(), e.message()};
    }
    return {0, {}};
}

TEST(LineTransfer, EachLineWaitsForItsAcknowledgementThenEraseAndEnd)
{
    const HexFile hex = Hex(11);
    const struct {
        const char *name;
        QByteArray lastAcknowledgement; // answer to the last line
        std::vector<QByteArray> later;  // then these, 10 ms apart
    } cases[] = {
        {"plain", "!", {"\r\nErasing\r\n", "Programming\r\n\x11"}},
        {"erase report in the acknowledgement's burst", "!\r\nErasing\r\n", {"\x11"}},
        {"erase report split in the middle", "!", {"Era", "sing", "\r\n", "\x11"}},
        {"acknowledgement with DC1 in front of the report", "!\x11", {"Erasing", "\x11"}},
        // The loader closes a word of its own before it erases: it is still at work.
        {"a DC1 inside the report before erasing", "!", {"\r\nLoader\r\n\x11", "Erasing\r\n", "\x11"}},
        {"a DC1 before erasing, late", "!", {"\r\n\x11", "Erasing ...\r\n", "... Programming\r\n\x11"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        for (qsizetype i = 0; i < hex.lines().size(); ++i) {
            const bool last = i + 1 == hex.lines().size();
            auto &step = s.transport.Expect(hex.lines()[i] + '\r');
            // Odd chunks: the acknowledgement after an echo of the line, one byte at a time.
            if (!last)
                step.ReplyByteByByte(hex.lines()[i].left(3) + "\r\n!", 1ms, 2ms);
            else
                step.Reply(c.lastAcknowledgement, 2ms);
            for (size_t k = 0; last && k < c.later.size(); ++k)
                step.Reply(c.later[k], 10ms * (k + 1));
        }
        EXPECT_TRUE(SendHexFile(s.link, s.prompter, hex));
        EXPECT_TRUE(s.transport.allExpectationsMet());
        // Not done before the DC1 behind the erase report has come.
        EXPECT_GE(s.clock.now(), 10ms * c.later.size());
        EXPECT_TRUE(RisesTo100(s.prompter.progressValues));
        EXPECT_EQ(s.prompter.busyDepth, 0);
        EXPECT_TRUE(s.prompter.messages.empty());
        EXPECT_TRUE(s.link.IsOpen());
    }
}

TEST(LineTransfer, ALineIsNotSentBeforeThePreviousOneIsAcknowledged)
{
    ScriptedLink s;
    const HexFile hex = Hex(11);
    for (qsizetype i = 0; i < hex.lines().size(); ++i) {
        auto &step = s.transport.Expect(hex.lines()[i] + '\r').Reply("!", 30s);
        if (i + 1 == hex.lines().size())
            step.Reply("Erasing\x11", 31s);
    }
    ASSERT_TRUE(SendHexFile(s.link, s.prompter, hex));
    const auto &writes = s.transport.writes();
    ASSERT_EQ(writes.size(), 12u);
    for (size_t i = 1; i < writes.size(); ++i)
        EXPECT_EQ(writes[i].at - writes[i - 1].at, 30s) << "line " << i + 1;
}

TEST(LineTransfer, FailuresEndTheTransferAndAskForTheUpdateAgain)
{
    const HexFile hex = Hex(11);
    const auto allButLast = [&](ScriptedTransport &t) {
        for (qsizetype i = 0; i + 1 < hex.lines().size(); ++i)
            t.Expect(hex.lines()[i] + '\r').Reply("!");
    };
    const struct {
        const char *name;
        std::function<void(ScriptedTransport &)> script;
        int number;
        const char *says;
        bool portOpen;
    } cases[] = {
        {"no acknowledgement for the first line",
         [&](ScriptedTransport &t) { t.Expect(hex.lines()[0] + '\r').Reply("\r\n", 1s); }, 3,
         "\"!\" nach Zeile 1 von 12", true},
        {"a line refused",
         [&](ScriptedTransport &t) { t.Expect(hex.lines()[0] + '\r').Reply(" Protokoll .N\r\n\x11"); },
         kProtocolErrorNumber, "Zeile 1 von 12 aus med.hex nicht angenommen", true},
        {"no erase report",
         [&](ScriptedTransport &t) {
             allButLast(t);
             t.Expect(hex.lines().back() + '\r').Reply("!");
         },
         3, "\"Erasing\" nach med.hex", true},
        {"the report ends without erasing",
         [&](ScriptedTransport &t) {
             allButLast(t);
             t.Expect(hex.lines().back() + '\r').Reply("!").Reply("\r\nChecksum error\r\n\x11", 20ms);
         },
         kEraseReportMissing, "kein Löschen gemeldet", true},
        // Only a package's loader has a programming report that can stand out of place.
        {"programming without erasing",
         [&](ScriptedTransport &t) {
             allButLast(t);
             t.Expect(hex.lines().back() + '\r').Reply("!").Reply("\r\n... Programming\r\n\x11", 20ms);
         },
         kEraseReportMissing, "kein Löschen gemeldet", true},
        {"no end after erasing",
         [&](ScriptedTransport &t) {
             allButLast(t);
             t.Expect(hex.lines().back() + '\r').Reply("!Erasing\r\n");
         },
         3, "das Ende (DC1) nach med.hex", true},
        {"a stalled line",
         [&](ScriptedTransport &t) {
             t.Expect(hex.lines()[0] + '\r').Reply("!");
             t.Expect(hex.lines()[1] + '\r').Stall();
         },
         3, "\"!\" nach Zeile 2 von 12", true},
        {"the port vanishes", [&](ScriptedTransport &t) { t.Expect(hex.lines()[0] + '\r').Vanish(5ms); },
         kPortErrorNumber, "(med.hex)", false},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        c.script(s.transport);
        const auto [number, message] = Failure([&] { SendHexFile(s.link, s.prompter, hex); });
        EXPECT_EQ(number, c.number) << message.toStdString();
        EXPECT_TRUE(message.contains(QString::fromUtf8(c.says))) << message.toStdString();
        EXPECT_TRUE(message.contains(QStringLiteral("Update wiederholen"))) << message.toStdString();
        EXPECT_TRUE(s.transport.allExpectationsMet());
        // Only a port that is gone is closed: the run goes on to restart the tester.
        EXPECT_EQ(s.link.IsOpen(), c.portOpen);
        EXPECT_EQ(s.prompter.busyDepth, 0);
        if (number == 3 || number == kEraseReportMissing) {
            EXPECT_GE(s.clock.now(), kAnswerTimeout);
        }
    }
}

TEST(LineTransfer, TenLinesOrFewerAreNotSent)
{
    ScriptedLink s;
    const HexFile hex = Hex(9);
    EXPECT_FALSE(SendHexFile(s.link, s.prompter, hex));
    EXPECT_TRUE(s.transport.writes().empty());
    ASSERT_EQ(s.prompter.messages.size(), 1u);
    EXPECT_EQ(s.prompter.messages[0].text, QDir::toNativeSeparators("/pkg/med.hex") + " nicht gefunden");
}

class CharacterStream : public FolderTest {
protected:
    QString Package(const QByteArray &bytes) { return Put(QStringLiteral("bilder.p"), bytes); }
};

TEST_F(CharacterStream, ExactlyTheFilesBytesGoOutInBlocksThenTheReportIsAwaited)
{
    const struct {
        const char *name;
        qsizetype size;
        std::vector<QByteArray> report; // 10 ms apart after the last block
    } cases[] = {
        {"101 bytes, one burst", 101, {kPackageReport}},
        {"exactly two blocks", 2 * kStreamBlockBytes, {kPackageReport}},
        {"report byte by byte", 2500,
         [] {
             std::vector<QByteArray> bytes;
             for (char c : QByteArray(kPackageReport))
                 bytes.emplace_back(1, c);
             return bytes;
         }()},
        {"DC1 first, then the reports", 2500, {"\x11", "Erasing flash\r\n", "Programming done\r\n", "\x11"}},
        {"more words around the reports",
         5000,
         {"Loader 2.1\r\nErasing.....", "OK\r\nProgramming..OK\r\n\x11"}},
        // A DC1 inside the report ends nothing before the programming report.
        {"erase report closed by DC1", 2500, {"Erasing ...\r\n\x11", "... Programming\r\n\x11"}},
        {"DC1 before the erase report",
         2500,
         {"Loader\r\n\x11", "Erasing ...\r\n", "... Programming\r\n\x11"}},
        {"DC1 closing erase report, end apart", 2500, {"Erasing\r\n\x11", "Programming\r\n", "\x11"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QByteArray bytes = PackageBytes(c.size);
        const QString path = Package(bytes);
        ScriptedLink s;
        auto &last = ExpectStream(s.transport, bytes);
        for (size_t k = 0; k < c.report.size(); ++k)
            last.Reply(c.report[k], 10ms * (k + 1));
        EXPECT_TRUE(SendPackageFile(s.link, s.prompter, path));
        EXPECT_TRUE(s.transport.allExpectationsMet());
        // Not done before the DC1 behind the programming report has come.
        EXPECT_GE(s.clock.now(), 10ms * c.report.size());
        QByteArray written;
        for (const auto &write : s.transport.writes())
            written += write.bytes;
        EXPECT_EQ(written, bytes);
        EXPECT_TRUE(RisesTo100(s.prompter.progressValues));
        EXPECT_EQ(s.prompter.busyDepth, 0);
        EXPECT_TRUE(s.prompter.messages.empty());
    }
}

TEST_F(CharacterStream, WhatTheTesterSaysDuringTheStreamIsNotPartOfTheReport)
{
    const QByteArray bytes = PackageBytes(3 * kStreamBlockBytes);
    ScriptedLink s;
    // Leftovers that would otherwise look like a finished report: the end phase needs a DC1
    // at or after the second byte of what came after the stream.
    s.transport.Expect(bytes.left(kStreamBlockBytes)).Reply("Erasing Programming\r\n\x11");
    s.transport.Expect(bytes.mid(kStreamBlockBytes, kStreamBlockBytes)).Reply("\x11");
    s.transport.Expect(bytes.mid(2 * kStreamBlockBytes))
        .Reply("Erasing\r\n", 20s)
        .Reply("Programming\r\n\x11", 30s);
    EXPECT_TRUE(SendPackageFile(s.link, s.prompter, Package(bytes)));
    EXPECT_EQ(s.clock.now(), 30s);
}

TEST_F(CharacterStream, ReportsMissingOrOutOfPlaceEndTheTransfer)
{
    const struct {
        const char *name;
        std::vector<QByteArray> report;
        int number;
        const char *says;
    } cases[] = {
        {"silence", {}, 3, "\"rasing\" nach bilder.p"},
        {"no programming report", {"Erasing\r\n"}, 3, "\"...ramming\" nach bilder.p"},
        {"no end", {"Erasing\r\n", "Programming\r\n"}, 3, "das Ende (DC1) nach bilder.p"},
        {"report ends without erasing",
         {"Checksum error\r\n\x11"},
         kEraseReportMissing,
         "kein Löschen gemeldet"},
        {"the file refused",
         {"Kopf fehlerhaft Protokoll .N\r\n\x11"},
         kProtocolErrorNumber,
         "bilder.p abgelehnt: \"Kopf fehlerhaft Protokoll .N"},
        {"report ends without programming",
         {"Erasing\r\n", "Flash error\r\n\x11"},
         3,
         "\"...ramming\" nach bilder.p"},
        {"programming report without erase report",
         {"... Programming\r\n\x11"},
         kEraseReportMissing,
         "kein Löschen gemeldet"},
        {"programming first, no erase report",
         {"ramming\r\n\x11"},
         kProgrammingReportMisplaced,
         "ohne Löschbericht"},
        {"programming report in front of the erase report",
         {"ramming\r\n", "Erasing\r\n", "\x11"},
         kProgrammingReportMisplaced,
         "ohne Löschbericht"},
    };
    const QByteArray bytes = PackageBytes(1500);
    const QString path = Package(bytes);
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        auto &last = ExpectStream(s.transport, bytes);
        for (size_t k = 0; k < c.report.size(); ++k)
            last.Reply(c.report[k], 10ms * (k + 1));
        const auto [number, message] = Failure([&] { SendPackageFile(s.link, s.prompter, path); });
        EXPECT_EQ(number, c.number) << message.toStdString();
        EXPECT_TRUE(message.contains(QString::fromUtf8(c.says))) << message.toStdString();
        EXPECT_TRUE(message.contains(QStringLiteral("Update wiederholen"))) << message.toStdString();
        EXPECT_EQ(s.prompter.busyDepth, 0);
    }
}

TEST_F(CharacterStream, AFloodInsteadOfAReportIsCutOff)
{
    const QByteArray bytes = PackageBytes(200);
    ScriptedLink s;
    ExpectStream(s.transport, bytes).Stream(QByteArray(64 * 1024, 'x'), 1ms, 40);
    const auto [number, message] = Failure([&] { SendPackageFile(s.link, s.prompter, Package(bytes)); });
    EXPECT_EQ(number, kFormatErrorNumber) << message.toStdString();
    EXPECT_TRUE(message.contains(QString::number(kMaxReportBytes))) << message.toStdString();
}

TEST_F(CharacterStream, AStalledLineOrAVanishedPortEndsTheStream)
{
    const QByteArray bytes = PackageBytes(2 * kStreamBlockBytes + 10);
    const QString path = Package(bytes);
    {
        ScriptedLink s;
        s.transport.Expect(bytes.left(kStreamBlockBytes));
        s.transport.Expect(bytes.mid(kStreamBlockBytes, kStreamBlockBytes)).Stall();
        const auto [number, message] = Failure([&] { SendPackageFile(s.link, s.prompter, path); });
        EXPECT_EQ(number, 3);
        EXPECT_TRUE(message.contains(QStringLiteral("nach 960 von 1930 Bytes"))) << message.toStdString();
        EXPECT_FALSE(s.link.IsOpen());
    }
    {
        ScriptedLink s;
        s.transport.Expect(bytes.left(kStreamBlockBytes)).Vanish();
        const auto [number, message] = Failure([&] { SendPackageFile(s.link, s.prompter, path); });
        EXPECT_EQ(number, kPortErrorNumber);
        EXPECT_TRUE(message.contains(QStringLiteral("Update wiederholen"))) << message.toStdString();
    }
}

TEST_F(CharacterStream, FilesOfAHundredBytesOrLessAreNotSentAndHugeOnesAreRefused)
{
    const struct {
        const char *name;
        qsizetype size; // -1: no file
    } cases[] = {{"missing", -1}, {"empty", 0}, {"100 bytes", 100}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = c.size < 0 ? m_dir.filePath(QStringLiteral("none.p"))
                                        : Put(QStringLiteral("p%1.p").arg(c.size), PackageBytes(c.size));
        ScriptedLink s;
        EXPECT_FALSE(SendPackageFile(s.link, s.prompter, path));
        EXPECT_TRUE(s.transport.writes().empty());
        ASSERT_EQ(s.prompter.messages.size(), 1u);
        EXPECT_EQ(s.prompter.messages[0].text, QDir::toNativeSeparators(path) + " nicht gefunden");
    }
    const QString huge = m_dir.filePath(QStringLiteral("huge.p"));
    ASSERT_TRUE(MakeLargeFile(huge, kMaxPackageFileBytes + 1));
    ScriptedLink s;
    const auto [number, message] = Failure([&] { SendPackageFile(s.link, s.prompter, huge); });
    EXPECT_EQ(number, kFormatErrorNumber);
    EXPECT_TRUE(message.contains(QString::number(kMaxPackageFileBytes + 1))) << message.toStdString();
    EXPECT_TRUE(s.transport.writes().empty());
}

TEST_F(CharacterStream, TheLoadersReportGoesToTheDevelopmentTrace)
{
    const QByteArray bytes = PackageBytes(300);
    ScriptedLink s;
    const QString trace = m_dir.filePath(QStringLiteral("test.log"));
    s.link.StartTrace(trace);
    ExpectStream(s.transport, bytes).Reply(kPackageReport);
    ASSERT_TRUE(SendPackageFile(s.link, s.prompter, Package(bytes)));
    s.link.StopTrace();
    EXPECT_EQ(ReadFile(trace), QByteArray(kPackageReport));
}

} // namespace
} // namespace kalvo::testing
