// The odd answer style: every odd answer still yields, by the reading rules of the command language,
// what the plain answer yields, and leaves in bursts.
#include "sim/AnswerStyle.h"
#include "link/TextRules.h"
#include "sim/SampleRecords.h"
#include "sim/VirtualTester.h"

#include <QRegularExpression>
#include <functional>
#include <gtest/gtest.h>

using namespace kalvo;
using namespace std::chrono_literals;
using sim::AnswerStyle;
using sim::VirtualTester;

namespace {

constexpr char kDC1 = '\x11';

// The whole answer to `line`, however many bursts it takes.
QByteArray AskIn(AnswerStyle style, const QByteArray &line, const QStringList &setup = {})
{
    link::ManualClock clock;
    VirtualTester tester(clock);
    tester.model().setKymInFront(setup.contains(QStringLiteral("kym")));
    if (setup.contains(QStringLiteral("specifications")))
        tester.model().records().setSpecifications(sim::SampleSpecifications());
    tester.model().setDateTime(QDateTime(QDate(2026, 3, 9), QTime(7, 5, 30)));
    tester.setStyle(style);
    tester.feed(line + '\r');
    clock.advance(1s);
    return tester.takeOutput(clock.now());
}

// The rules by which the program takes answers apart, each in its own words.
using Rule = std::function<QByteArray(const QByteArray &answer)>;

qsizetype Position(const QByteArray &answer, const char *mark)
{
    return answer.indexOf(mark); // -1 when missing
}

// The two characters in front of the first ".Y", as a number (hexadecimal, blanks trimmed).
QByteArray BeforeYes(const QByteArray &answer)
{
    const qsizetype yes = Position(answer, ".Y");
    if (yes < 2)
        return "<no .Y>";
    bool ok = false;
    const int value = answer.mid(yes - 2, 2).trimmed().toInt(&ok, 16);
    return ok ? QByteArray::number(value) : "<not a number>";
}

// The two characters after the first "=", as a number.
QByteArray AfterEquals(const QByteArray &answer)
{
    const qsizetype equals = Position(answer, "=");
    bool ok = false;
    const int value = answer.mid(equals + 1, 2).trimmed().toInt(&ok, 16);
    return equals >= 0 && ok ? QByteArray::number(value) : "<none>";
}

// The whole number that begins `skip` characters after the first `mark` (after leading blanks,
// where the rule trims them), up to the first non-digit.
QByteArray NumberAfter(const QByteArray &answer, const char *mark, qsizetype skip = 0,
                       bool trimBlanks = false)
{
    const qsizetype at = Position(answer, mark);
    if (at < 0)
        return "<no mark>";
    static const QRegularExpression digits(QStringLiteral("^(\\d+)"));
    QByteArray rest = answer.mid(at + qstrlen(mark) + skip);
    if (trimBlanks)
        rest = rest.trimmed();
    const auto match = digits.match(QString::fromLatin1(rest));
    return match.hasMatch() ? QByteArray::number(match.captured(1).toInt()) : "<no digits>";
}

// The text between `start` and ".Y".
QByteArray Between(const QByteArray &answer, const char *start)
{
    const qsizetype from = Position(answer, start), to = Position(answer, ".Y");
    return from >= 0 && to > from ? answer.mid(from + 1, to - from - 1) : "<none>";
}

// A record chunk: after the first `mark` (and the filler behind it), without the 4-character trailer.
Rule Chunk(const char *mark, int filler)
{
    return [mark, filler](const QByteArray &answer) {
        const qsizetype at = Position(answer, mark);
        return at < 0 ? QByteArray("<no mark>") : answer.mid(at + 1 + filler).chopped(4);
    };
}

// The fields behind the first ";", with the numbers of each date, whether split at "." or "/".
QByteArray VersionDates(const QByteArray &answer)
{
    QByteArray dates;
    for (const QByteArray &field : answer.split(';').mid(1)) {
        QByteArray numbers = field.trimmed();
        dates += numbers.replace('/', '.') + '|';
    }
    return dates;
}

QByteArray Accepted(const QByteArray &answer)
{
    return answer.contains(".Y") && !answer.contains(".N") ? "yes" : "no";
}

} // namespace

TEST(AnswerStyle, OddAnswersYieldWhatThePlainOnesYieldByEveryReadingRule)
{
    struct Case {
        QByteArray line;
        const char *rule; // for the message
        Rule read;
        QStringList setup = {};
    };
    const Rule dateAndTime = [](const QByteArray &a) {
        return a.mid(Position(a, "=") + 2, 8) + ' ' + a.mid(Position(a, ";") + 2, 8);
    };
    const Case cases[] = {
        {"dis?", "two characters before .Y", BeforeYes},
        {"dis?", ".Y after position 2",
         [](const QByteArray &a) { return Position(a, ".Y") + 1 > 2 ? "yes" : "no"; }},
        {"var?D3", "two characters before .Y", BeforeYes},
        {"var?D3", "two characters after =", AfterEquals},
        {"var?D2", "the number after =", [](const QByteArray &a) { return NumberAfter(a, "="); }},
        {"var?E3", "contains 1", [](const QByteArray &a) { return a.contains('1') ? "on" : "off"; }},
        {"var?D3", "contains 1", [](const QByteArray &a) { return a.contains('1') ? "on" : "off"; }},
        {"bit?4", "two characters before .Y", BeforeYes},
        {"ver?", "dates behind ;", VersionDates},
        // The device type (field 1) is only shown; serial number, name and firmware are read.
        {"idn?", "fields 2 on behind ;",
         [](const QByteArray &a) { return link::SplitFields(a).mid(2).join(';').trimmed(); }},
        {"idn?", "three after the last \" V\"",
         [](const QByteArray &a) { return a.mid(a.lastIndexOf(" V") + 3, 4); }},
        {"idn?",
         "the accessory",
         [](const QByteArray &a) { return a.contains("QRT4027") ? "yes" : "no"; },
         {"kym"}},
        {"kal? 29", "after ; up to .Y", [](const QByteArray &a) { return Between(a, ";"); }},
        {"kal? 0", "after ; up to .Y", [](const QByteArray &a) { return Between(a, ";"); }},
        {"wer?bgwkuschl_ea", "five after the B of BGW",
         [](const QByteArray &a) { return NumberAfter(a, "BGW", 2); }},
        {"wer?bgw601_UBEZ", "five after the B of BGW",
         [](const QByteArray &a) { return NumberAfter(a, "BGW", 2); }},
        {"dat?", "8 after =+2 and ;+2", dateAndTime},
        {"str?125", "after , up to .Y", [](const QByteArray &a) { return Between(a, ","); }},
        {"prn?3", "the text behind \\v", [](const QByteArray &a) { return a.mid(Position(a, "\\v") + 2); }},
        {"prn? 0", "the text behind \\v", [](const QByteArray &a) { return a.mid(Position(a, "\\v") + 2); }},
        {"prx?n", "the number after =, blanks trimmed",
         [](const QByteArray &a) { return NumberAfter(a, "=", 0, true); }},
        {"prx?", "contains .Y", Accepted},
        {"prx?x", "after =, less the trailer", Chunk("=", 0)},
        {"prx?z", "after =, less the trailer", Chunk("=", 0)},
        {"esr?", "the number after ;", [](const QByteArray &a) { return NumberAfter(a, ";"); }, {"kym"}},
        {"prx?nx", "the stream as it came", [](const QByteArray &a) { return a; }},
        {"wer?", "the stream as it came", [](const QByteArray &a) { return a; }, {"kym"}},
        {"", "the prompt", [](const QByteArray &a) { return a; }},
    };
    for (const Case &c : cases) {
        const QByteArray plain = AskIn(AnswerStyle::Plain, c.line, c.setup);
        const QByteArray odd = AskIn(AnswerStyle::Odd, c.line, c.setup);
        const std::string what = c.line.toStdString() + " (" + c.rule + "): plain \"" +
                                 link::EscapeBytes(plain).toStdString() + "\", odd \"" +
                                 link::EscapeBytes(odd).toStdString() + '"';
        ASSERT_TRUE(odd.endsWith(kDC1)) << what;
        EXPECT_EQ(odd.count(kDC1), 1) << what;
        EXPECT_EQ(c.read(odd), c.read(plain)) << what;
    }
}

TEST(AnswerStyle, RecordPartsCutElsewhereJoinToTheSameRecord)
{
    // The odd style cuts a test record so that its last part is empty, and sends a specification's
    // second and third parts without a ";" of their own in front. By the readers' rules (behind
    // ":", behind the filler by position or as the literal) the record joins to the same text.
    const auto joined = [](AnswerStyle style, int number, bool literalFiller) {
        const bool specification = number <= 2;
        QByteArray record;
        for (const char part : {'x', 'y', 'z'}) {
            const QByteArray answer =
                AskIn(style, "prx?" + QByteArray::number(number) + part, {"specifications"});
            QByteArray text = part == 'x'     ? Chunk(":", 0)(answer)
                              : literalFiller ? answer.mid(Position(answer, "XXXXXXXX") + 8).chopped(4)
                                              : Chunk(":", 8)(answer);
            if (part != 'x' && specification && style == AnswerStyle::Plain) {
                EXPECT_TRUE(text.startsWith(";;")) << text.constData();
                text.remove(0, 1); // the plain style's ";" of its own
            }
            record += text;
        }
        return record;
    };
    for (const int number : {1, 2, 7, 16}) {
        SCOPED_TRACE(number);
        for (const bool literalFiller : {false, true})
            EXPECT_EQ(joined(AnswerStyle::Odd, number, literalFiller),
                      joined(AnswerStyle::Plain, number, literalFiller));
        const QByteArray last =
            AskIn(AnswerStyle::Odd, "prx?" + QByteArray::number(number) + "z", {"specifications"});
        EXPECT_EQ(last.contains(';'), number <= 2) << last.constData();
    }
}

TEST(AnswerStyle, SettingsAreAcceptedWithoutAnEchoAndRefusalsStayRefusals)
{
    for (const QByteArray line : {"idn!99", "kal!ein", "cfg!pgm", "idn!1,NEU-1", "str!122,0711 4711"}) {
        const QByteArray odd = AskIn(AnswerStyle::Odd, line);
        EXPECT_EQ(Accepted(odd), "yes") << line.constData();
        EXPECT_FALSE(odd.contains(line)) << line.constData() << ": no echo";
    }
    for (const QByteArray line : {"kal!pgm", "xyz?", "var?C0", "idn!1,NINE-CHAR"})
        EXPECT_EQ(AskIn(AnswerStyle::Odd, line), AskIn(AnswerStyle::Plain, line)) << line.constData();
}

TEST(AnswerStyle, EveryOddFormDiffersFromThePlainOne)
{
    // Otherwise the style would prove nothing about that command.
    for (const QByteArray line :
         {"dis?", "ver?", "idn?", "var?D3", "bit?4", "kal? 3", "wer?bgwkuschl_ea", "wer?bgw601_UBEZ", "dat?",
          "str?125", "prx?n", "prx?", "prx?2y", "prx?y", "kal!ein", "cfg!pgm"})
        EXPECT_NE(AskIn(AnswerStyle::Odd, line), AskIn(AnswerStyle::Plain, line)) << line.constData();
}

TEST(AnswerStyle, CapitalEchoesNeverMakeAMarkTheProgramLooksFor)
{
    // "wer?bgw..." in capitals would put a "BGW" in front of the value's; a name with ".n" would
    // become a refusal.
    EXPECT_FALSE(
        sim::OddAnswer("wer?bgwkuschl_ea", "wer?bgwkuschl_ea BGW <030.0 mA.Y\r\n\x11").startsWith("WER"));
    EXPECT_EQ(sim::OddAnswer("str?121", "str?121,a.n.Y\r\n\x11"), QByteArray("STR?121,a.n.Y\r\n\x11"));
    EXPECT_EQ(sim::OddAnswer("var?d3", "var?d3=01.Y\r\n\x11"), QByteArray("VAR?D3= 1.Y\n\x11"));
}

TEST(AnswerStyle, OddAnswersLeaveAsFirstByteThenTheRestThenTheTerminator)
{
    link::ManualClock clock;
    VirtualTester tester(clock);
    tester.setStyle(AnswerStyle::Odd);
    tester.feed("var?D3\r");
    EXPECT_EQ(tester.takeOutput(clock.now()), QByteArray("V"));
    clock.advance(20ms);
    EXPECT_EQ(tester.takeOutput(clock.now()), QByteArray("AR?D3= 1.Y\n"));
    clock.advance(20ms);
    EXPECT_EQ(tester.takeOutput(clock.now()), QByteArray(1, kDC1));

    // A fault spoils the odd answer as it would the plain one.
    tester.faults().add(QStringLiteral("noterminator"));
    tester.feed("var?D3\r");
    clock.advance(1s);
    EXPECT_EQ(tester.takeOutput(clock.now()), QByteArray("VAR?D3= 1.Y\n"));
}

TEST(AnswerStyle, NamesAreParsedInAnyCase)
{
    EXPECT_EQ(sim::ParseAnswerStyle(QStringLiteral("Odd")), AnswerStyle::Odd);
    EXPECT_EQ(sim::ParseAnswerStyle(QStringLiteral("plain")), AnswerStyle::Plain);
    EXPECT_FALSE(sim::ParseAnswerStyle(QStringLiteral("weird")));
    EXPECT_EQ(sim::AnswerStyleNames(), (QStringList{QStringLiteral("plain"), QStringLiteral("odd")}));
}
