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

TEST(CalibrationFixUp, ValuesAreReadWhereverTheAnswerPutsThem)
{
    const struct {
        QByteArray answer;
        std::optional<double> b;
    } value29[] = {
        {"kal?29;29:0,3042.6.Y\r\n\x11", 3042}, // five characters: "3042."
        {"KAL?29;29:0,2999.Y\r\n\x11", 2999},   // echo in capitals
        {";29:1.5, 1234.5.Y\n\x11", 1234},      // no echo, a blank after the comma
        {"kal?29;29:0,-12.5.Y\x11", -12.5},     // within the five characters
        {"kal?29;29:0,123456.Y\x11", 12345},    // only five characters count
        {"kal?29;29:0,.5.Y\x11", 0.5},
        {"kal?29 Protokoll .N\r\n\x11", std::nullopt}, // a refusal holds no value
        {"kal?29;29:0,.Y\x11", std::nullopt},          // nothing behind the comma
        {"kal?29;29,0:3000.Y\x11", std::nullopt},      // comma before the colon
        {"kal?29;29:0;3000.Y\x11", std::nullopt},      // no comma
    };
    for (const auto &c : value29)
        EXPECT_EQ(Value29(c.answer), c.b) << EscapeBytes(c.answer).toStdString();
    const struct {
        QByteArray answer;
        std::optional<double> c;
    } value50[] = {
        {"kal?50;50:0,1204.Y\r\n\x11", 1204},
        {"KAL?50;50:0,  499.5.Y\x11", 499.5},
        {"kal?50;50:0,abc.Y\x11", std::nullopt},
        {"kal?50;50:0 1204.Y\x11", std::nullopt},
    };
    for (const auto &c : value50)
        EXPECT_EQ(Value50(c.answer), c.c) << EscapeBytes(c.answer).toStdString();
}

TEST(CalibrationFixUp, TheNewValue29IsTheShortestTextOfTheSinglePrecisionProduct)
{
    // Worked out by hand from the single nearest each product: 1.69 as a single is 1.69000006,
    // so 1776 × 1.69 is the single 3001.44019, whose shortest text needs eight digits; seven
    // ("3001.44") would read back as another single, the double's digits would be far more.
    const struct {
        double b;
        const char *text;
    } cases[] = {
        {1234, "2085.46"},       {2000, "3380"}, {1776, "3001.4402"}, {2999, "5068.31"}, {1, "1.69"},
        {0.001, "0.0016900002"}, {0, "0"},       {-0.0, "0"},         {100, "169"},      {-1000, "-1690"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ScaledValue29(c.b), QByteArray(c.text)) << c.b;
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
        bool bad29;
    } cases[] = {{"29", true}, {"50", false}};
    for (const auto &c : cases) {
        SCOPED_TRACE(c.name);
        ScriptedLink s;
        ExpectSetting(s.transport, "idn!99");
        ExpectSetting(s.transport, "kal!ein");
        if (c.bad29) {
            s.transport.Expect("kal?29\r").Reply("kal?29 ???\r\n\x11");
        } else {
            s.transport.Expect("kal?29\r").Reply("kal?29;29:0,3500.Y\r\n\x11");
            s.transport.Expect("kal?50\r").Reply("kal?50\r\n\x11");
        }
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
