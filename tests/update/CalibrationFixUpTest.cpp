// The calibration fix-up after a package run: which values it reads, when it writes and stores.
#include "UpdateScript.h"

#include "../link/LinkFixture.h"
#include "link/Errors.h"
#include "link/ServiceSession.h"
#include "link/TextRules.h"
#include "update/CalibrationFixUp.h"

#include <gtest/gtest.h>

using namespace kalvo::link;
using namespace kalvo::update;

namespace kalvo::testing {
namespace {

TEST(CalibrationFixUp, OnlyFirmwareAboveOnePointFourGetsIt)
{
    const struct {
        double version;
        bool needed;
    } cases[] = {{1.3, false}, {1.4, false}, {1.40000001, false}, {1.41, true}, {1.52, true}, {2.0, true}};
    for (const auto &c : cases)
        EXPECT_EQ(FixUpNeeded(c.version), c.needed) << c.version;
}

TEST(CalibrationFixUp, ValuesAreReadOnlyFromWholeAnswersThatNameTheirEntry)
{
    const struct {
        QByteArray answer;
        std::optional<double> b;
    } value29[] = {
        {"kal?29;29:0,3042.6.Y\r\n\x11", 3042}, // five characters: "3042."
        {"KAL?29;29:0,2999.Y\r\n\x11", 2999},   // echo in capitals
        {";29:1.5, 1234.5.Y\n\x11", 1234},      // no echo, a blank after the comma
        {"kal? 29;29:0,1001 .Y\r\n\x11", 1001}, // a blank in the command's echo and behind the value
        {"kal?29;29:0,123456.Y\x11", 12345},    // only five characters count
        {"kal?29;29:0,.5.Y\x11", 0.5},
        {"kal?29;29:0,10.Y", 10},                        // DC1 already taken off
        {"kal?29 Protokoll .N\r\n\x11", std::nullopt},   // a refusal holds no value
        {"kal?29;29:0,.Y\x11", std::nullopt},            // nothing behind the comma
        {"kal?29;29:0, -99999.Y\r\n\x11", std::nullopt}, // negative: never multiplied
        {"kal?29;29:0,-12.5.Y\x11", std::nullopt},
        {"kal?29;29:0,0x1F.Y\x11", std::nullopt},   // garbled
        {"kal?29;29:0,1e3.Y\x11", std::nullopt},    // an exponent is no plain number
        {"kal?29;29:0,&H1F.Y\x11", std::nullopt},   // nor is hexadecimal
        {"kal?29;29:0,1001\r\n\x11", std::nullopt}, // no ".Y"
        {"kal?29;29:0,1001.Nx\r\n\x11", std::nullopt},
        {"kal?29;29:0,1001.Y junk\x11", std::nullopt}, // ".Y" does not close it
        {"kal?29;30:0,1001.Y\x11", std::nullopt},      // the answer of another entry
        {"kal?29;129:0,1001.Y\x11", std::nullopt},
        {"kal?29;29,0:3000.Y\x11", std::nullopt}, // comma before the colon
        {"kal?29;29:0;3000.Y\x11", std::nullopt}, // no comma
    };
    for (const auto &c : value29)
        EXPECT_EQ(Value29(c.answer), c.b) << EscapeBytes(c.answer).toStdString();
    const struct {
        QByteArray answer;
        std::optional<double> c;
    } value50[] = {
        {"kal?50;50:0,1204.Y\r\n\x11", 1204},      {"KAL?50;50:0,  499.5.Y\x11", 499.5},
        {";50:0,123456.Y\n\x11", 123456}, // the whole value, not five characters
        {"kal?50;50:0,abc.Y\x11", std::nullopt},   {"kal?50;50:0 1204.Y\x11", std::nullopt},
        {"kal?50;50:0,-1.Y\x11", std::nullopt},    {"kal?50;50:0,.Y\x11", std::nullopt},
        {"kal?50;50:0,499\r\n\x11", std::nullopt}, {"kal?50;29:0,499.Y\r\n\x11", std::nullopt},
    };
    for (const auto &c : value50)
        EXPECT_EQ(Value50(c.answer), c.c) << EscapeBytes(c.answer).toStdString();
}

TEST(CalibrationFixUp, TheNewValue29IsTheDoubleProductInAtMostFifteenDigits)
{
    const struct {
        double b;
        const char *text;
    } cases[] = {
        {1001, "1691.69"}, {10, "16.9"},   {1234, "2085.46"},    {2000, "3380"}, {1776, "3001.44"},
        {2999, "5068.31"}, {1, "1.69"},    {0.001, "0.00169"},   {0, "0"},       {-0.0, "0"},
        {100, "169"},      {0.5, "0.845"}, {1234.5, "2086.305"}, {3, "5.07"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ScaledValue29(c.b), QByteArray(c.text)) << c.b;
}

TEST(CalibrationFixUp, EveryWholeValueBelowTheLimitIsWrittenAsItsExactProduct)
{
    // B × 169 / 100 is exact in decimals: the text must be those digits, with no trailing zeros.
    for (int b = 0; b < 3000; ++b) {
        const int hundredths = b * 169;
        QByteArray expected = QByteArray::number(hundredths / 100);
        if (hundredths % 100 != 0) {
            expected += '.' + QByteArray::number(hundredths % 100).rightJustified(2, '0');
            if (expected.endsWith('0'))
                expected.chop(1);
        }
        ASSERT_EQ(ScaledValue29(b), expected) << b;
    }
}

TEST(CalibrationFixUp, WritesOnlyBelowTheLimitsAndStoresOnlyAChange)
{
    const struct {
        const char *name;
        QByteArray value29, value50;
        QList<QByteArray> writes; // between "kal?29"/"kal?50" and "kal!aus"
    } cases[] = {
        {"both at their limits", "3000", "500", {}},
        {"29 just below", "2999", "500", {"wer!29,0", "wer!29,5068.31", "kal!pgm"}},
        {"50 just below", "3000", "499", {"wer!50,1204", "kal!pgm"}},
        {"both below", "1234", "0", {"wer!29,0", "wer!29,2085.46", "wer!50,1204", "kal!pgm"}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        ExpectSetting(s.transport, "idn!99");
        ExpectSetting(s.transport, "kal!ein");
        s.transport.Expect("kal?29\r").Reply("kal?29;29:0," + c.value29 + ".Y\r\n\x11");
        QList<QByteArray> writes = c.writes;
        if (!writes.isEmpty() && writes.front().startsWith("wer!29")) {
            ExpectSetting(s.transport, writes.takeFirst());
            ExpectSetting(s.transport, writes.takeFirst());
        }
        s.transport.Expect("kal?50\r").Reply("kal?50;50:0," + c.value50 + ".Y\r\n\x11");
        for (const QByteArray &write : writes)
            ExpectSetting(s.transport, write);
        ExpectSetting(s.transport, "kal!aus");
        const FixUpResult result = FixUpCalibration(s.link, s.prompter);
        EXPECT_TRUE(s.transport.allExpectationsMet());
        EXPECT_EQ(result.stored, c.writes.contains("kal!pgm"));
        EXPECT_EQ(s.link.refusals(), 0);
    }
}

TEST(CalibrationFixUp, ARefusedWriteStoresNothing)
{
    ScriptedLink s;
    ExpectSetting(s.transport, "idn!99");
    ExpectSetting(s.transport, "kal!ein");
    s.transport.Expect("kal?29\r").Reply("kal?29;29:0,2000.Y\r\n\x11");
    // Refused: the second write would otherwise land in the first value.
    s.transport.Expect("wer!29,0\r").Reply("wer!29,0 .N\r\n\x11");
    s.transport.Expect("kal?50\r").Reply("kal?50;50:0,100.Y\r\n\x11");
    ExpectSetting(s.transport, "wer!50,1204");
    ExpectSetting(s.transport, "kal!aus");
    const FixUpResult result = FixUpCalibration(s.link, s.prompter);
    EXPECT_TRUE(s.transport.allExpectationsMet());
    EXPECT_FALSE(result.stored);
    EXPECT_FALSE(result.changed29);
    ASSERT_EQ(s.prompter.messages.size(), 1u);
    EXPECT_EQ(s.prompter.messages[0].text, kCalibrationNotStoredText);
}

TEST(CalibrationFixUp, AnAnswerWithoutItsValueWritesNothingAndLeavesConfigurationMode)
{
    const struct {
        const char *name;
        QByteArray answer29, answer50; // answer50 empty: "kal?50" is not asked
    } cases[] = {
        {"29", "kal?29 ???\r\n\x11", {}},
        {"29", "kal?29;29:0, -99999.Y\r\n\x11", {}},
        {"29", "kal?29;29:0,1e3.Y\r\n\x11", {}},
        {"29", "kal?29;29:0,0x1F.Y\r\n\x11", {}},
        {"29", "kal?29;29:0,1001\r\n\x11", {}},
        {"50", "kal?29;29:0,3500.Y\r\n\x11", "kal?50\r\n\x11"},
        {"50", "kal?29;29:0,3500.Y\r\n\x11", "kal?50;50:0,-5.Y\r\n\x11"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(EscapeBytes(c.answer29 + c.answer50).toStdString());
        ScriptedLink s;
        ExpectSetting(s.transport, "idn!99");
        ExpectSetting(s.transport, "kal!ein");
        s.transport.Expect("kal?29\r").Reply(c.answer29);
        if (!c.answer50.isEmpty())
            s.transport.Expect("kal?50\r").Reply(c.answer50);
        ExpectSetting(s.transport, "kal!aus");
        try {
            FixUpCalibration(s.link, s.prompter);
            ADD_FAILURE() << "no FormatError";
        } catch (const FormatError &e) {
            EXPECT_TRUE(e.message().contains(QStringLiteral("kal?") + c.name)) << e.message().toStdString();
        }
        EXPECT_TRUE(s.transport.allExpectationsMet());
    }
}

} // namespace
} // namespace kalvo::testing
