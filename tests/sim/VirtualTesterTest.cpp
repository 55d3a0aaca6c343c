// The virtual tester on its own: what it answers, what it remembers, and how its faults spoil answers.
#include "sim/VirtualTester.h"
#include "link/TextRules.h"
#include "sim/FaultPlan.h"
#include "sim/SimTransport.h"

#include <functional>
#include <gtest/gtest.h>

using namespace kalvo;
using namespace std::chrono_literals;
using sim::Fault;
using sim::FaultKind;
using sim::FaultPlan;
using sim::VirtualTester;

namespace {

// One line in, everything it produced out (unpaced, so all of it is there at once).
QByteArray Ask(VirtualTester &tester, link::ManualClock &clock, const QByteArray &line)
{
    tester.feed(line + '\r');
    return tester.takeOutput(clock.now());
}

QByteArray Answer(const QByteArray &text)
{
    return text + "\r\n\x11";
}

} // namespace

TEST(VirtualTester, AnswersCommandsAndRemembersSettings)
{
    struct Step {
        QByteArray line;
        QByteArray answer;
    };
    struct Case {
        const char *name;
        std::vector<Step> steps;
    };
    const QByteArray prompt("\r\n>\x11");
    const Case cases[] = {
        {"wake-up lines", {{"", prompt}, {"\x04", prompt}, {"\x07", prompt}}},
        {"language and flags",
         {{"dis?", Answer("dis? 00.Y")},
          {"var?E3", Answer("var?E3=00.Y")},
          {"var?d3", Answer("var?d3=01.Y")}}},
        {"register bounds",
         {{"var?CE", Answer("var?CE.N")},
          {"var?G1", Answer("var?G1.N")},
          {"var?FF", Answer("var?FF=00.Y")},
          {"var?D", Answer("var?D.N")}}},
        {"register write",
         {{"var!D3 1f", Answer("var!D3 1f.Y")},
          {"var?D3", Answer("var?D3=1F.Y")},
          {"var!D3,0", Answer("var!D3,0.Y")},
          {"var?D3", Answer("var?D3=00.Y")},
          {"var!D3", Answer("var!D3.N")},
          {"var!D3 123", Answer("var!D3 123.N")},
          {"var!C0 1", Answer("var!C0 1.N")}}},
        {"bit bytes",
         {{"bit?4", Answer("bit?4=01.Y")},
          {"bit!04 3", Answer("bit!04 3.Y")},
          {"bit?04", Answer("bit?04=03.Y")},
          {"bit?8", Answer("bit?8.N")},
          {"bit!9 1", Answer("bit!9 1.N")}}},
        {"string registers",
         {{"str!122,0815 4711", Answer("str!122,0815 4711.Y")},
          {"str?122", Answer("str?122,0815 4711.Y")},
          {"str!123,", Answer("str!123,.Y")},
          {"str?123", Answer("str?123,.Y")},
          {"str!abc", Answer("str!abc.N")}}},
        {"name",
         {{"idn!1,ABCDEFGH", Answer("idn!1,ABCDEFGH.Y")},
          {"idn!1,ABCDEFGHI", Answer("idn!1,ABCDEFGHI.Nx")},
          {"idn?", Answer("idn?;Kalvomer 9000;0471 1203 5567;ABCDEFGH;Firmware V 1.52")}}},
        {"configuration mode",
         {{"kal!pgm", Answer("kal!pgm.Nx")},
          {"kal!ein", Answer("kal!ein.Y")},
          {"kal!PGM", Answer("kal!PGM.Y")},
          {"kal!aus", Answer("kal!aus.Y")},
          {"kal!pgm", Answer("kal!pgm.Nx")},
          {"cfg!pgm", Answer("cfg!pgm.Y")}}},
        {"session lines",
         {{"idn!99", Answer("idn!99.Y")},
          {"idn!0", Answer("idn!0.Y")},
          {"mes!0", Answer("mes!0.Y")},
          {"RST!0", Answer("RST!0.Y")}}},
        {"clock setting",
         {{"dat!31.12.25;23:59", Answer("dat!31.12.25;23:59.Y")},
          {"dat!32.12.25;10:00", Answer("dat!32.12.25;10:00.N")},
          {"dat!01.01.25", Answer("dat!01.01.25.N")}}},
        {"refusals",
         {{"xyz?", Answer("xyz? Protokoll .N")},
          {"wer?bgw", Answer("wer?bgw Protokoll .N")},
          {"di", Answer("di Protokoll .N")}}},
    };
    for (const Case &c : cases) {
        link::ManualClock clock;
        VirtualTester tester(clock);
        for (const Step &step : c.steps)
            EXPECT_EQ(Ask(tester, clock, step.line), step.answer) << c.name << ": " << step.line.constData();
    }
}

TEST(VirtualTester, ClockRunsOnFromTheSettingAndSplitsAtEqualsAndSemicolon)
{
    link::ManualClock clock;
    VirtualTester tester(clock);
    Ask(tester, clock, "dat!24.12.25;18:30");
    clock.advance(65s);
    const QByteArray answer = Ask(tester, clock, "dat?");
    EXPECT_EQ(answer, Answer("dat?= 24.12.25; 18:31:05"));
    // Where the tools cut it: 8 characters from 2 behind "=" and from 2 behind ";".
    EXPECT_EQ(answer.mid(answer.indexOf('=') + 2, 8), "24.12.25");
    EXPECT_EQ(answer.mid(answer.indexOf(';') + 2, 8), "18:31:05");
}

TEST(VirtualTester, RestartNeedsTheLoneEotAndBringsBackTheStoredCopy)
{
    struct Case {
        const char *name;
        QByteArray afterReset; // what follows the answered "rst!0"
        bool restarts;
    };
    const Case cases[] = {
        {"lone EOT", "\x04", true},
        {"EOT CR is the restart and then a wake-up line", "\x04\r", true},
        {"no EOT", "var?D3\r", false},
    };
    for (const Case &c : cases) {
        link::ManualClock clock;
        VirtualTester tester(clock);
        Ask(tester, clock, "var!D3 7");
        Ask(tester, clock, "rst!0");
        tester.feed(c.afterReset);
        tester.takeOutput(clock.now());
        EXPECT_EQ(tester.restarts(), c.restarts ? 1 : 0) << c.name;
        EXPECT_EQ(Ask(tester, clock, "var?D3"), Answer(c.restarts ? "var?D3=01.Y" : "var?D3=07.Y")) << c.name;
    }
}

TEST(VirtualTester, FaultsSpoilTheAnswerButOnlyRefusalsKeepTheLineFromBeingCarriedOut)
{
    const QByteArray normal = Answer("var!D3 0.Y");
    struct Case {
        const char *kind;
        std::function<bool(const QByteArray &)> answerOk;
        bool carriedOut;
    };
    const Case cases[] = {
        {"silence", [](const QByteArray &a) { return a.isEmpty(); }, true},
        {"noterminator", [&](const QByteArray &a) { return a == normal.chopped(1); }, true},
        {"refuse", [](const QByteArray &a) { return a == Answer("var!D3 0 Protokoll .N"); }, false},
        {"refusestore", [](const QByteArray &a) { return a == Answer("var!D3 0.Nx"); }, false},
        {"cutoff", [&](const QByteArray &a) { return a == normal.left(normal.size() / 2); }, true},
        {"garbage",
         [](const QByteArray &a) {
             return a.endsWith('\x11') && a.count('\x11') == 1 && !a.contains(".Y") && a.size() > 10;
         },
         true},
        {"trailingjunk",
         [&](const QByteArray &a) { return a.startsWith(normal) && a.size() > normal.size(); }, true},
    };
    for (const Case &c : cases) {
        link::ManualClock clock;
        VirtualTester tester(clock);
        ASSERT_TRUE(tester.faults().add(QString::fromLatin1(c.kind) + ":var!"));
        const QByteArray answer = Ask(tester, clock, "var!D3 0");
        EXPECT_TRUE(c.answerOk(answer)) << c.kind << ": " << link::EscapeBytes(answer).toStdString();
        EXPECT_EQ(tester.model().working().Register(0xD3), c.carriedOut ? 0 : 1) << c.kind;
        // The next line is answered normally again: the fault was for "var!" only.
        EXPECT_EQ(Ask(tester, clock, "dis?"), Answer("dis? 00.Y")) << c.kind;
    }
}

TEST(VirtualTester, GarbageIsTheSameRunAfterRun)
{
    link::ManualClock clock;
    VirtualTester first(clock), second(clock);
    first.faults().add(QStringLiteral("garbage"));
    second.faults().add(QStringLiteral("garbage"));
    EXPECT_EQ(Ask(first, clock, "dis?"), Ask(second, clock, "dis?"));
    EXPECT_NE(Ask(first, clock, "dis?"), Ask(first, clock, "dis?")) << "each exchange has its own garbage";
    // No reading rule may find a value in it: none of the marks answers are taken apart at.
    for (int i = 0; i < 200; ++i) {
        const QByteArray garbage = Ask(first, clock, "prx?n");
        for (char mark : QByteArray(".:;=,$"))
            EXPECT_FALSE(garbage.contains(mark)) << link::EscapeBytes(garbage).toStdString();
    }
}

TEST(VirtualTester, VanishedLineTakesNothingMore)
{
    link::ManualClock clock;
    VirtualTester tester(clock);
    tester.faults().add(QStringLiteral("vanish@2"));
    EXPECT_EQ(Ask(tester, clock, "dis?"), Answer("dis? 00.Y"));
    EXPECT_TRUE(Ask(tester, clock, "var!D3 0").isEmpty());
    EXPECT_TRUE(tester.vanished());
    Ask(tester, clock, "idn?");
    EXPECT_EQ(tester.receivedLines().size(), 2);
    EXPECT_EQ(tester.model().working().Register(0xD3), 1);
}

TEST(FaultPlan, HitsTheMatchingExchangesForItsCount)
{
    struct Case {
        const char *fault;
        std::vector<QByteArray> lines;
        std::vector<bool> hit;
    };
    const Case cases[] = {
        {"refuse:dis?x2", {"dis?", "var?D3", "DIS?", "dis?"}, {true, false, true, false}},
        {"refuse@3", {"dis?", "var?D3", "dis?", "idn?"}, {false, false, true, true}},
        {"refuse:var?@2x1", {"var?E3", "var?D3", "var?D3"}, {false, true, false}},
        {"refuse:var?D", {"var?E3", "var?D3", "var!D3 0"}, {false, true, false}},
    };
    for (const Case &c : cases) {
        FaultPlan plan;
        ASSERT_TRUE(plan.add(QString::fromLatin1(c.fault)));
        for (size_t i = 0; i < c.lines.size(); ++i)
            EXPECT_EQ(plan.Take(c.lines[i], static_cast<int>(i) + 1).has_value(), c.hit[i])
                << c.fault << " line " << i + 1;
    }
}

TEST(FaultPlan, LoaderFaultsAreTakenOnlyForTheLoaderTheyMatch)
{
    FaultPlan plan;
    ASSERT_TRUE(plan.add(QStringLiteral("noerase:kal!upd3x1")));
    ASSERT_TRUE(plan.add(QStringLiteral("silence:kal!upd")));
    ASSERT_TRUE(plan.add(QStringLiteral("noack")));
    EXPECT_EQ(plan.Take("kal!upd3", 1), FaultKind::Silence) << "the answer's fault, not the loader's";
    EXPECT_EQ(plan.TakeLoader("kal!upd3", 1), FaultKind::NoErase);
    EXPECT_EQ(plan.TakeLoader("kal!upd3", 2), FaultKind::NoAck) << "noerase was used up";
    EXPECT_EQ(plan.TakeLoader("kal!upd0", 3), FaultKind::NoAck);
    EXPECT_EQ(plan.Take("dis?", 4), std::nullopt) << "loader faults never spoil an answer";
    EXPECT_TRUE(sim::IsLoaderFault(FaultKind::ResetHalfway));
    EXPECT_FALSE(sim::IsLoaderFault(FaultKind::Vanish));
}

TEST(FaultPlan, ParsesFaultTextAndExplainsMistakes)
{
    struct Good {
        const char *text;
        FaultKind kind;
        QByteArray command;
        int from;
        int count;
    };
    const Good good[] = {
        {"silence:dis?", FaultKind::Silence, "dis?", 1, -1},
        {"garbage@3", FaultKind::Garbage, "", 3, -1},
        {"refuse:dis?x5", FaultKind::Refuse, "dis?", 1, 5},
        {"Trailing-Junk:var?E3@2x1", FaultKind::TrailingJunk, "var?E3", 2, 1},
        {"no_terminator:str!125,AT x", FaultKind::NoTerminator, "str!125,AT x", 1, -1},
        {"cutoff", FaultKind::CutOff, "", 1, -1},
        {"refusestore:cfg!pgm", FaultKind::RefuseStore, "cfg!pgm", 1, -1},
        {"vanish:var?E3", FaultKind::Vanish, "var?E3", 1, -1},
        {"noack", FaultKind::NoAck, "", 1, -1},
        {"no-erase:kal!upd3", FaultKind::NoErase, "kal!upd3", 1, -1},
        {"RammingOnly@4", FaultKind::RammingOnly, "", 4, -1},
        {"reset_halfway:kal!upd0x1", FaultKind::ResetHalfway, "kal!upd0", 1, 1},
    };
    for (const Good &g : good) {
        QString error;
        const auto fault = FaultPlan::Parse(QString::fromLatin1(g.text), &error);
        ASSERT_TRUE(fault) << g.text << ": " << error.toStdString();
        EXPECT_EQ(fault->kind, g.kind) << g.text;
        EXPECT_EQ(fault->command, g.command) << g.text;
        EXPECT_EQ(fault->fromExchange, g.from) << g.text;
        EXPECT_EQ(fault->count, g.count) << g.text;
    }
    for (const char *bad :
         {"", "explode", "explode:dis?", "silence:", "garbage@0", "refuse:dis?x0", "silence dis?"}) {
        QString error;
        EXPECT_FALSE(FaultPlan::Parse(QString::fromLatin1(bad), &error)) << bad;
        EXPECT_TRUE(error.contains(QString::fromLatin1(bad))) << bad << ": " << error.toStdString();
    }
    QString error;
    FaultPlan::Parse(QStringLiteral("explode"), &error);
    EXPECT_TRUE(error.contains(QStringLiteral("trailingjunk"))) << "the message lists the known kinds";
}

TEST(SimTransport, DrainWaitsForTheWireAndDiscardKeepsWhatIsStillOnIt)
{
    link::ManualClock clock;
    VirtualTester tester(clock);
    tester.setBaud(9600);
    sim::SimTransport transport(tester, clock);
    transport.open(QStringLiteral("Simulator"));
    transport.write("ver?\r");
    transport.drain(std::chrono::seconds(40));
    // Draining is honest about the wire: the five bytes take their time to go out.
    EXPECT_EQ(clock.now(), tester.byteTime() * 5);
    clock.advance(tester.byteTime() * 20);
    transport.discardInput();
    QByteArray rest;
    for (int i = 0; i < 100 && !rest.endsWith('\x11'); ++i)
        rest += transport.read(1000ms);
    link::ManualClock otherClock;
    VirtualTester unpaced(otherClock);
    EXPECT_EQ(rest, Ask(unpaced, otherClock, "ver?").mid(20));
    EXPECT_TRUE(transport.read(0ms).isEmpty());
}
