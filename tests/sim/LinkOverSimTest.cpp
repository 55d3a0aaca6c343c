// The real link and its operations against the virtual tester in-process, on a clock that only moves when
// slept on.
#include "link/DisplayFilter.h"
#include "link/Errors.h"
#include "link/Identification.h"
#include "link/Link.h"
#include "link/PortNames.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"
#include "sim/DisplayFrame.h"
#include "sim/SimTransport.h"
#include "sim/VirtualTester.h"
#include "support/ScriptedPrompter.h"

#include <functional>
#include <gtest/gtest.h>

using namespace kalvo;
using namespace std::chrono_literals;
using link::Duration;

namespace {

struct Bench {
    explicit Bench(int baud = 0) { tester.setBaud(baud); }

    link::ManualClock clock;
    sim::VirtualTester tester{clock};
    sim::SimTransport transport{tester, clock};
    kalvo::testing::ScriptedPrompter prompter;
    link::Link link{transport, prompter, clock};

    QStringList Lines() const
    {
        QStringList lines;
        for (const auto &line : tester.receivedLines())
            lines << link::EscapeBytes(line.bytes);
        return lines;
    }
    int CountLines(const QString &escaped) const { return static_cast<int>(Lines().count(escaped)); }
};

QByteArray Answer(const QByteArray &text)
{
    return text + "\r\n\x11";
}

} // namespace

TEST(LinkOverSim, ConnectAndIdentifyReadWhatTheTesterHolds)
{
    struct Case {
        const char *name;
        std::function<void(sim::VirtualTester &)> setUp;
        bool quillbank;
        bool d3;
        int language;
        double firmware;
        QByteArray name8;
        bool accessory;
    };
    const Case cases[] = {
        {"defaults", [](sim::VirtualTester &) {}, false, true, 0, 1.52, "KALVO-01", false},
        {"czech bench tester",
         [](sim::VirtualTester &t) {
             t.model().setLanguage(6);
             t.model().setName("BENCH-7");
             t.model().working().Register(0xE3) = 0x10; // "10" holds a "1": the accessory entry is offered
             t.model().working().Register(0xD3) = 0x00;
         },
         true, false, 6, 1.52, "BENCH-7", false},
        {"accessory in front", [](sim::VirtualTester &t) { t.model().setKymInFront(true); }, false, true, 0,
         2.10, "KYM-BOX", true},
    };
    for (const Case &c : cases) {
        Bench bench;
        c.setUp(bench.tester);
        const link::ConnectionState state = link::ConnectTester(bench.link, link::kSimulatorPortName);
        const link::TesterIdentity id = link::IdentifyTester(bench.link, {});
        EXPECT_EQ(state.quillbankPresent, c.quillbank) << c.name;
        EXPECT_EQ(state.d3Option, c.d3) << c.name;
        EXPECT_EQ(id.languageCode, c.language) << c.name;
        EXPECT_DOUBLE_EQ(id.firmwareVersion, c.firmware) << c.name;
        EXPECT_EQ(id.shortDesignation, c.name8) << c.name;
        EXPECT_EQ(id.AccessoryInFront(), c.accessory) << c.name;
        EXPECT_EQ(id.versionTexts[0], QStringLiteral("17.03.09 10:42")) << c.name;
        EXPECT_EQ(id.versionDates[static_cast<size_t>(link::VersionPart::Sequences)],
                  QDateTime(QDate(2009, 2, 20), QTime(14, 5)))
            << c.name;
        EXPECT_TRUE(bench.prompter.messages.empty()) << c.name;
    }
}

TEST(LinkOverSim, ConnectSendsTheWakeUpLinesATenthOfASecondApartThenTheCommands)
{
    Bench bench;
    link::ConnectTester(bench.link, link::kSimulatorPortName);
    link::IdentifyTester(bench.link, {});
    // The link writes CR CR in one go; the tester sees two empty lines, both answered with its prompt.
    EXPECT_EQ(bench.Lines(), (QStringList{"\\r", "\\r", "\\x04\\r", "\\x07\\r", "mes!0\\r", "kal!aus\\r",
                                          "var?E3\\r", "var?D3\\r", "dis?\\r", "ver?\\r", "idn?\\r"}));
    const auto &lines = bench.tester.receivedLines();
    ASSERT_GE(lines.size(), 4);
    EXPECT_EQ(lines[1].at, lines[0].at);
    EXPECT_EQ(lines[2].at - lines[1].at, Duration(100ms));
    EXPECT_EQ(lines[3].at - lines[2].at, Duration(100ms));
}

TEST(LinkOverSim, DisplayQueryIsTriedFiveTimes)
{
    struct Case {
        const char *fault;
        bool identified;
        int tries;
        int refusalMessages;
    };
    const Case cases[] = {
        // A refusal is not cured by a later answer: the tries go on, the identification fails.
        {"refuse:dis?x4", false, 5, 4},
        {"refuse:dis?x5", false, 5, 5},
        {"garbage:dis?x2", true, 3, 0},
    };
    for (const Case &c : cases) {
        Bench bench;
        ASSERT_TRUE(bench.tester.faults().add(QString::fromLatin1(c.fault)));
        bench.link.OpenPort(link::kSimulatorPortName);
        try {
            const link::TesterIdentity id = link::IdentifyTester(bench.link, {});
            EXPECT_TRUE(c.identified) << c.fault;
            EXPECT_EQ(id.languageCode, 0) << c.fault;
        } catch (const link::ProtocolError &e) {
            EXPECT_FALSE(c.identified) << c.fault;
            EXPECT_EQ(e.number(), 31995) << c.fault;
            EXPECT_EQ(e.text(), QStringLiteral("Identstring fehlerhaft")) << c.fault;
        }
        EXPECT_EQ(bench.CountLines(QStringLiteral("dis?\\r")), c.tries) << c.fault;
        ASSERT_EQ(static_cast<int>(bench.prompter.messages.size()), c.refusalMessages) << c.fault;
        if (c.refusalMessages > 0) {
            EXPECT_EQ(bench.prompter.messages[0].text, QStringLiteral("31995:  Identstring fehlerhaft"))
                << c.fault;
        }
    }
}

TEST(LinkOverSim, AnswersThatNeverEndTimeOutAndCloseThePort)
{
    for (const char *fault : {"silence:var?E3", "noterminator:var?E3", "cutoff:var?E3"}) {
        Bench bench;
        ASSERT_TRUE(bench.tester.faults().add(QString::fromLatin1(fault)));
        const Duration start = bench.clock.now();
        EXPECT_THROW(link::ConnectTester(bench.link, link::kSimulatorPortName), link::Timeout) << fault;
        EXPECT_GE(bench.clock.now() - start, Duration(40s)) << fault;
        EXPECT_FALSE(bench.link.IsOpen()) << fault;
    }
}

TEST(LinkOverSim, VanishedLineIsALostPortAndStaysGone)
{
    Bench bench;
    ASSERT_TRUE(bench.tester.faults().add(QStringLiteral("vanish:ver?")));
    bench.link.OpenPort(link::kSimulatorPortName);
    try {
        link::IdentifyTester(bench.link, {});
        ADD_FAILURE() << "identification went on after the line vanished";
    } catch (const link::PortError &e) {
        EXPECT_EQ(e.kind(), link::PortError::Kind::Lost);
    }
    EXPECT_FALSE(bench.link.IsOpen());
    try {
        bench.link.OpenPort(link::kSimulatorPortName);
        ADD_FAILURE() << "a vanished tester opened again";
    } catch (const link::PortError &e) {
        EXPECT_EQ(e.kind(), link::PortError::Kind::CannotOpen);
    }
}

TEST(LinkOverSim, TrailingJunkDoesNotLeakIntoTheNextAnswer)
{
    for (int baud : {0, 9600}) {
        Bench bench(baud);
        ASSERT_TRUE(bench.tester.faults().add(QStringLiteral("trailingjunk:var?E3")));
        const link::ConnectionState state = link::ConnectTester(bench.link, link::kSimulatorPortName);
        EXPECT_FALSE(state.quillbankPresent) << baud;
        EXPECT_TRUE(state.d3Option) << baud;
        EXPECT_EQ(bench.link.Exchange("var?D3"), Answer("var?D3=01.Y")) << baud;
    }
}

TEST(LinkOverSim, ChangesLastOverARestartOnlyWhenStored)
{
    struct Case {
        const char *name;
        link::StoreCommand store;
        const char *fault;
        bool stored;
        bool kept;
    };
    const Case cases[] = {
        {"no store", link::StoreCommand::None, nullptr, true, false},
        {"configuration store", link::StoreCommand::Configuration, nullptr, true, true},
        {"calibration store", link::StoreCommand::Calibration, nullptr, true, true},
        {"store refused", link::StoreCommand::Configuration, "refusestore:cfg!pgm", false, false},
    };
    for (const Case &c : cases) {
        Bench bench;
        if (c.fault) {
            ASSERT_TRUE(bench.tester.faults().add(QString::fromLatin1(c.fault)));
        }
        bench.link.OpenPort(link::kSimulatorPortName);
        const bool stored = link::RunServiceSession(bench.link, bench.prompter, c.store, true, [&] {
            bench.link.Exchange("var!D3 0");
            bench.link.Exchange("idn!1,NEU");
        });
        EXPECT_EQ(stored, c.stored) << c.name;
        EXPECT_EQ(bench.tester.restarts(), 1) << c.name;
        EXPECT_EQ(bench.link.Exchange("var?D3"), Answer(c.kept ? "var?D3=00.Y" : "var?D3=01.Y")) << c.name;
        EXPECT_EQ(link::IdentifyTester(bench.link, {}).shortDesignation, c.kept ? "NEU" : "KALVO-01")
            << c.name;
    }
}

TEST(LinkOverSim, RestartSendsTheResetLineThenTheLoneEot)
{
    Bench bench;
    bench.tester.setRestartDelay(5s);
    bench.link.OpenPort(link::kSimulatorPortName);
    link::RestartTester(bench.link);
    EXPECT_EQ(bench.Lines(), (QStringList{"rst!0\\r", "\\x04"}));
    // The restarting tester answers the next line only when it is up again.
    const Duration start = bench.clock.now();
    EXPECT_EQ(bench.link.Exchange("dis?"), Answer("dis? 00.Y"));
    EXPECT_GE(bench.clock.now() - start, Duration(5s));
}

TEST(LinkOverSim, PacedExchangeTakesTheWireTimeOfItsBytes)
{
    for (const QByteArray &command : {QByteArray("var?D3"), QByteArray("ver?"), QByteArray("idn?")}) {
        Bench bench(9600);
        bench.link.OpenPort(link::kSimulatorPortName);
        const Duration start = bench.clock.now();
        const QByteArray answer = bench.link.Exchange(command);
        const double seconds = link::ToSeconds(bench.clock.now() - start);
        const qsizetype bytes = command.size() + 1 + answer.size();
        ASSERT_TRUE(answer.endsWith('\x11')) << command.constData();
        EXPECT_NEAR(seconds, bytes / 960.0, 1e-4) << command.constData();
    }
}

TEST(LinkOverSim, DisplayFramesReachTheRemoteDisplay)
{
    Bench bench(9600);
    bench.link.OpenPort(link::kSimulatorPortName);
    bench.tester.pushDisplay(sim::DisplayFrame(3));
    // Paced, the frame comes in pieces; it is complete when the line goes quiet.
    QByteArray burst;
    for (QByteArray chunk; burst.size() < 4096 && !(chunk = bench.link.ReadUnprompted(100ms)).isEmpty();)
        burst += chunk;
    const link::DisplayUpdate update = link::FilterDisplayStream(burst);
    EXPECT_TRUE(update.clear);
    for (const QString &text : {QStringLiteral("Gerät"), QStringLiteral("0.14 Ohm"), QStringLiteral("15 µA"),
                                QStringLiteral("Berührstrom"), QStringLiteral("Prüfung läuft")})
        EXPECT_TRUE(update.text.contains(text)) << text.toStdString() << " in " << update.text.toStdString();
}
