// Clock, name and service-terminal operations against the virtual tester.
#include "link/Errors.h"
#include "link/LanguageTable.h"
#include "link/Link.h"
#include "shell/ClockAndName.h"
#include "shell/ServiceTerminal.h"
#include "sim/SimTransport.h"
#include "support/ScriptedPrompter.h"

#include "link/LinkFixture.h"
#include "support/SimBench.h"
#include <QFile>
#include <QTemporaryDir>

#include "support/TestFiles.h"

#include <gtest/gtest.h>

using namespace kalvo;

using kalvo::testing::ReadFile;

namespace {} // namespace

TEST(Clock, ShowsTheTestersClockProposesThePcsAndSendsTheTextAsTyped)
{
    const QDateTime now(QDate(2026, 11, 21), QTime(9, 5, 30));
    const struct {
        std::optional<QString> typed;
        QByteArray sent; // empty: nothing after "dat?"
    } cases[] = {
        {QStringLiteral("21.11.26;09:05"), "dat!21.11.26;09:05\r"},
        {QStringLiteral("21.11.26 09:05"), "dat!21.11.26 09:05\r"}, // the tester judges it, not we
        {QString(), ""},
        {std::nullopt, ""},
    };
    for (const auto &c : cases) {
        kalvo::testing::SimBench s;
        s.tester.model().setDateTime(QDateTime(QDate(2009, 3, 17), QTime(10, 42, 7)));
        s.prompter.textAnswers.push_back(c.typed);
        const shell::ClockSetting setting = shell::SetTesterClock(s.link, s.prompter, now);
        EXPECT_EQ(setting.before.date, QByteArray("17.03.09"));
        EXPECT_EQ(setting.before.time, QByteArray("10:42:07"));
        ASSERT_EQ(s.prompter.calls.size(), 1);
        EXPECT_EQ(s.prompter.calls[0], QStringLiteral("askText:Datum und Uhrzeit ändern|Kalvomer:\nDatum "
                                                      "17.03.09\nUhrzeit 10:42:07|21.11.26;09:05"));
        QList<QByteArray> expected{"dat?\r"};
        if (!c.sent.isEmpty())
            expected << c.sent;
        EXPECT_EQ(s.Lines(), expected);
    }
}

TEST(Name, EightCharactersAreStoredNineAreRefusedBeforeAnythingIsSent)
{
    const link::LanguageTable texts;
    const struct {
        QString name;
        shell::NamingResult result;
        QList<QByteArray> lines;
    } cases[] = {
        {QStringLiteral("ABCDEFGH"),
         shell::NamingResult::Sent,
         {"kal!aus\r", "idn!1,ABCDEFGH\r", "cfg!pgm\r"}},
        {QStringLiteral("LAB-2"), shell::NamingResult::Sent, {"kal!aus\r", "idn!1,LAB-2\r", "cfg!pgm\r"}},
        {QStringLiteral("ABCDEFGHI"), shell::NamingResult::TooLong, {}},
        {QString(), shell::NamingResult::Cancelled, {}},
    };
    for (const auto &c : cases) {
        kalvo::testing::SimBench s;
        EXPECT_EQ(shell::SendTesterName(s.link, s.prompter, texts, c.name), c.result) << c.name.toStdString();
        EXPECT_EQ(s.Lines(), c.lines) << c.name.toStdString();
        if (c.result == shell::NamingResult::TooLong) {
            ASSERT_EQ(s.prompter.messages.size(), 1u);
            EXPECT_EQ(s.prompter.messages[0].text, texts.text(link::TxtNameTooLong));
        }
    }
    // A stored name survives a restart and is what the tester then reports.
    kalvo::testing::SimBench s;
    shell::SendTesterName(s.link, s.prompter, texts, QStringLiteral("WERK-7"));
    s.tester.model().Restart();
    EXPECT_TRUE(s.link.Exchange("idn?").contains(";WERK-7;"));
}

TEST(Name, TheDialogAsksWithTheLanguagesPromptAndLimitAfterIdentifying)
{
    const link::LanguageTable texts;
    kalvo::testing::SimBench s;
    s.prompter.textAnswers.push_back(std::nullopt);
    std::optional<link::TesterIdentity> shownFirst;
    const shell::Naming naming =
        shell::NameTester(s.link, s.prompter, texts, {}, std::nullopt,
                          [&](const link::TesterIdentity &identity) { shownFirst = identity; });
    EXPECT_EQ(naming.result, shell::NamingResult::Cancelled);
    ASSERT_EQ(s.prompter.calls.size(), 1);
    EXPECT_TRUE(s.prompter.calls[0].contains(texts.text(link::TxtNamePrompt) + QStringLiteral("\n\n(") +
                                             texts.text(link::TxtNameLimit) + QStringLiteral(")")));
    ASSERT_TRUE(shownFirst.has_value());
    EXPECT_EQ(shownFirst->shortDesignation, QByteArray("KALVO-01"));
    EXPECT_EQ(s.Lines(), (QList<QByteArray>{"dis?\r", "ver?\r", "idn?\r"}));
}

// A tester that answers in its own way: upper-case echoes, other blanks, refusals at any step.
TEST(Name, TheIdentityShownAfterNamingIsTheNewOneOnlyWhenTheTesterStoredIt)
{
    const QByteArray identity = "IDN? ;Kalvomer 701 ;4711;ALT-NAME; V 1.52\r\n\x11";
    const struct {
        const char *name;
        QByteArray nameAnswer, storeAnswer; // empty store answer: "cfg!pgm" is not sent
        std::deque<bool> confirmations;
        shell::NamingResult result;
        const char *shownName;
    } cases[] = {
        {"stored", "IDN!1,NEU-1 .Y\x11", "CFG!PGM  .Y\x11", {}, shell::NamingResult::Sent, "NEU-1"},
        {"store refused",
         "idn!1,NEU-1.Y\x11",
         "cfg!pgm.Nx\x11",
         {},
         shell::NamingResult::NotStored,
         "ALT-NAME"},
        {"name refused, store declined",
         "Protokoll .N3\x11",
         "",
         {false},
         shell::NamingResult::NotStored,
         "ALT-NAME"},
        {"name refused, stored on request",
         "Protokoll .N3\x11",
         "cfg!pgm.Y\x11",
         {true},
         shell::NamingResult::NotStored,
         "ALT-NAME"},
    };
    const link::LanguageTable texts;
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        kalvo::testing::ScriptedLink s;
        s.transport.Expect("dis?\r").Reply("DIS?  0.Y\r\n\x11");
        s.transport.Expect("ver?\r").Reply("VER?;17.03.09;17.03.09;02.02.09;05.02.09;20.02.09\x11");
        s.transport.Expect("idn?\r").ReplyByteByByte(identity);
        s.transport.Expect("kal!aus\r").Reply("KAL!AUS .Y\x11");
        s.transport.Expect("idn!1,NEU-1\r").Reply(c.nameAnswer);
        if (!c.storeAnswer.isEmpty())
            s.transport.Expect("cfg!pgm\r").Reply(c.storeAnswer);
        s.prompter.confirmAnswers = c.confirmations;
        const shell::Naming naming =
            shell::NameTester(s.link, s.prompter, texts, {}, QStringLiteral("NEU-1"));
        EXPECT_EQ(naming.result, c.result);
        EXPECT_EQ(naming.identity.shortDesignation, QByteArray(c.shownName));
        EXPECT_EQ(naming.identity.serialNumber, QByteArray("4711"));
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}

TEST(Name, AGivenNameThatIsTooLongSendsNothingNotEvenTheIdentification)
{
    const link::LanguageTable texts;
    kalvo::testing::SimBench s;
    const shell::Naming naming =
        shell::NameTester(s.link, s.prompter, texts, {}, QStringLiteral("NEUNZEICH"));
    EXPECT_EQ(naming.result, shell::NamingResult::TooLong);
    EXPECT_TRUE(s.Lines().isEmpty());
    ASSERT_EQ(s.prompter.messages.size(), 1u);
    EXPECT_EQ(s.prompter.messages[0].text, texts.text(link::TxtNameTooLong));
}

TEST(ServiceTerminal, ScriptSendsLinesWholeAndKeepsCommentsAndReadings)
{
    QTemporaryDir dir;
    const QString script = dir.filePath(QStringLiteral("beispiel.abl"));
    const QString result = dir.filePath(QStringLiteral("beispiel.txt"));
    QFile file(script);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("mes!0\r\nwer?WC;protective conductor\r\nvar?D3\r\nwer?WB\n");
    file.close();

    kalvo::testing::SimBench s;
    QStringList shown;
    EXPECT_EQ(shell::RunCommandScript(s.link, script, result, [&](const QString &l) { shown << l; }), 4);
    EXPECT_EQ(s.Lines(),
              (QList<QByteArray>{"mes!0\r", "wer?WC;protective conductor\r", "var?D3\r", "wer?WB\r"}));
    EXPECT_EQ(shown.size(), 4);
    const QList<QByteArray> lines = ReadFile(result).split('\n');
    ASSERT_GE(lines.size(), 3);
    EXPECT_EQ(lines[0], QByteArray(";protective conductor\r"));
    EXPECT_TRUE(lines[1].contains("Wertx=")) << lines[1].constData();
    EXPECT_TRUE(ReadFile(result).count("Wertx=") == 2);
    EXPECT_EQ(ReadFile(result).count("var?D3"), 0);
}

TEST(ServiceTerminal, ScriptLinesEndAtCrLfOrBothAndEachWaitsForItsAnswer)
{
    const struct {
        const char *name;
        QByteArray file;
        QList<QByteArray> lines;
    } cases[] = {
        {"CR only", "mes!0\rwer?WC;pe\rvar?D3", {"mes!0", "wer?WC;pe", "var?D3"}},
        {"LF only", "mes!0\nwer?WC;pe\n", {"mes!0", "wer?WC;pe"}},
        {"CR LF", "mes!0\r\nwer?WC;pe\r\n", {"mes!0", "wer?WC;pe"}},
        {"mixed, an empty line kept", "mes!0\r\rwer?WC;pe\nvar?D3\r\n", {"mes!0", "", "wer?WC;pe", "var?D3"}},
        {"empty file", "", {}},
        // An "ü" goes out as the tester's byte, whether the script was saved as UTF-8 or Windows text.
        {"UTF-8", "str!121,M\xc3\xbcller\r\n", {"str!121,M\x81ller"}},
        {"Windows text",
         "str!121,M\xfcller;\xb5"
         "A\r",
         {"str!121,M\x81ller;\xe6"
          "A"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        QTemporaryDir dir;
        const QString script = dir.filePath(QStringLiteral("beispiel.abl"));
        const QString result = dir.filePath(QStringLiteral("beispiel.txt"));
        kalvo::testing::WriteFile(script, c.file);
        kalvo::testing::ScriptedLink s;
        // Each answer comes in pieces; the next line may only go out once its DC1 is in.
        for (const QByteArray &line : c.lines)
            s.transport.Expect(line + "\r").ReplyByteByByte(line.toUpper() + " Wertx= 1.Y\n\x11");
        QStringList shown;
        EXPECT_EQ(shell::RunCommandScript(s.link, script, result, [&](const QString &l) { shown << l; }),
                  c.lines.size());
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(shown.size(), c.lines.size());
        EXPECT_EQ(ReadFile(result).count("Wertx="), c.lines.size());
    }
}

TEST(ServiceTerminal, TypedTextOfSeveralLinesGoesOutALineAtATime)
{
    const struct {
        QString typed;
        QList<QByteArray> lines;
    } cases[] = {
        {QStringLiteral("dis?\rver?"), {"dis?", "ver?"}},
        {QStringLiteral("dis?\r\nver?\n"), {"dis?", "ver?"}},
        {QString(), {""}}, // an empty command line is a lone CR
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.typed.toStdString());
        kalvo::testing::ScriptedLink s;
        QByteArray answers;
        for (const QByteArray &line : c.lines) {
            const QByteArray answer = line.toUpper() + ".Y\n\x11";
            s.transport.Expect(line + "\r").ReplyByteByByte(answer);
            answers += answer;
        }
        EXPECT_EQ(shell::SendTerminalCommand(s.link, c.typed), answers);
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}

TEST(ServiceTerminal, AScriptThatStopsHalfWayLeavesTheOldResultAlone)
{
    QTemporaryDir dir;
    const QString script = dir.filePath(QStringLiteral("beispiel.abl"));
    const QString result = dir.filePath(QStringLiteral("beispiel.txt"));
    QFile old(result);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("yesterday's readings\r\n");
    old.close();
    QFile file(script);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("wer?WC;one\r\ndis?\r\n");
    file.close();

    kalvo::testing::SimBench s;
    s.tester.faults().add(QStringLiteral("silence:dis?"));
    EXPECT_THROW(shell::RunCommandScript(s.link, script, result), link::Timeout);
    EXPECT_EQ(ReadFile(result), QByteArray("yesterday's readings\r\n"));
    EXPECT_THROW(shell::RunCommandScript(s.link, dir.filePath(QStringLiteral("none.abl")), result),
                 link::FormatError);
}

TEST(ServiceTerminal, HelpTextsStepWithKeyOneBetweenThemAndStopReturnsToTheStart)
{
    kalvo::testing::SimBench s;
    shell::HelpStepper stepper;
    stepper.Begin();
    stepper.Next(s.link);
    stepper.Next(s.link);
    stepper.Stop(s.link);
    EXPECT_EQ(stepper.next(), 3);
    EXPECT_EQ(s.Lines(),
              (QList<QByteArray>{"brk!H 1\r", "tas!1\r", "tas!1\r", "brk!H 2\r", "tas!1\r", "sst!0\r"}));
}

TEST(ServiceTerminal, DirectPrintingAndTheTrace)
{
    kalvo::testing::SimBench s;
    shell::SetDirectPrinting(s.link, true);
    shell::SetDirectPrinting(s.link, false);
    EXPECT_EQ(s.Lines(), (QList<QByteArray>{"bit!04 1\r", "bit!04 0\r"}));

    QTemporaryDir dir;
    const QString trace = dir.filePath(QStringLiteral("test.log"));
    s.link.StartTrace(trace);
    shell::SendTerminalCommand(s.link, QStringLiteral("wer?WC"));
    EXPECT_FALSE(s.link.tracing() && ReadFile(trace).isEmpty());
    // Taking the trace empties the file and the trace goes on.
    const QByteArray taken = shell::TakeTrace(s.link, trace);
    EXPECT_TRUE(taken.contains("wer?WC Wertx="));
    EXPECT_TRUE(s.link.tracing());
    EXPECT_EQ(ReadFile(trace), QByteArray());
}

TEST(ServiceTerminal, ATypedWerPutsIntoTheTraceOnlyWhatTheTesterSent)
{
    QTemporaryDir dir;
    const QString trace = dir.filePath(QStringLiteral("test.log"));
    // An accessory's records back to back, each closed by "$FF", in pieces.
    const QByteArray records = "K1\x13"
                               "0.5$FFK2\x13"
                               "1.0$FF\n\x11";
    kalvo::testing::ScriptedLink s;
    s.link.StartTrace(trace);
    s.transport.Expect("wer?\r").ReplyByteByByte(records);
    EXPECT_EQ(shell::SendTerminalCommand(s.link, QStringLiteral("wer?")), records);
    EXPECT_EQ(shell::TakeTrace(s.link, trace), records);
}

TEST(ServiceTerminal, TraceViewsAsTextAndAsDecimalCodes)
{
    EXPECT_EQ(shell::TraceAsCodes("A\r\nB"), QStringLiteral(" 65 13 10\n 66"));
    EXPECT_EQ(shell::TraceAsCodes(QByteArray("\x11", 1)), QStringLiteral(" 17"));
    EXPECT_EQ(shell::TraceAsText("Ger\x84t"), QStringLiteral("Gerät"));
}
