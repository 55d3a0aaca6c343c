// Tester characters to display text, answer cutting, numbers and register bytes.
#include "link/Clock.h"
#include "link/Errors.h"
#include "link/Registers.h"
#include "link/TextRules.h"

#include <gtest/gtest.h>
#include <limits>

using namespace kalvo::link;

namespace {

TEST(Conversion, DisplayCharacters)
{
    const struct {
        int code;
        const char *text; // UTF-8
    } cases[] = {
        {'#', ""},  {'@', ""},   {123, ""},   {127, ""},    {0, ""},    {17, ""},   {31, ""},
        {253, ""},  {254, ""},   {255, ""},   {234, "Ohm"}, {230, "µ"}, {142, "Ä"}, {153, "Ö"},
        {154, "Ü"}, {225, "ß"},  {132, "ä"},  {148, "ö"},   {129, "ü"}, {'A', "A"}, {' ', " "},
        {'z', "z"}, {0xC4, "─"}, {0xB3, "│"}, {0xDA, "┌"},  {160, "á"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ConvertDisplayChar(static_cast<unsigned char>(c.code)), QString::fromUtf8(c.text))
            << "code " << c.code;
}

// What is typed on the PC goes out in the tester's bytes: its umlauts, the micro sign a keyboard
// types and the ohm sign as the codes its display shows them by, its code page for the rest.
TEST(Conversion, TypedTextBecomesTheTestersBytes)
{
    const struct {
        const char *typed; // UTF-8
        QByteArray bytes;
    } cases[] = {
        {"str!121,Müller", "str!121,M\x81ller"},
        {"ÄÖÜäöüß", "\x8e\x99\x9a\x84\x94\x81\xe1"},
        {"µA μ", "\xe6"
                 "A \xe6"},   // the micro sign and the Greek letter
        {"Ω Ω", "\xea \xea"}, // the ohm sign and the Greek capital omega
        {"┌─┐", "\xda\xc4\xbf"},
        {"€ 漢", "? ?"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(EncodeTesterText(QString::fromUtf8(c.typed)), c.bytes) << c.typed;
    // Every mapped code but the ohm sign, which the display spells "Ohm", comes back from its text.
    for (const int code : {230, 142, 153, 154, 225, 132, 148, 129})
        EXPECT_EQ(EncodeTesterText(ConvertDisplayChar(static_cast<unsigned char>(code))),
                  QByteArray(1, static_cast<char>(code)));
}

TEST(Conversion, HexToBinaryKeepsTheGroupOfAnInvalidDigitFromTheLastCall)
{
    const struct {
        const char *hex;
        const char *bits;
    } cases[] = {
        {"D3", "1101 0011"}, {"00", "0000 0000"}, {"FF", "1111 1111"}, {"9A", "1001 1010"},
        {"x5", "1001 0101"}, {"7a", "0111 0101"}, {"C", "1100 0101"},
    };
    BinaryGroups groups; // shared by the rows, in order
    for (const auto &c : cases)
        EXPECT_EQ(HexToBinary(c.hex, groups), QString::fromLatin1(c.bits)) << c.hex;
}

TEST(Conversion, FlagsAndHexRoundTripForEveryByte)
{
    for (int value = 0; value < 256; ++value) {
        const QByteArray hex = QByteArray::number(value, 16).toUpper();
        const Flags flags = HexToFlags(hex);
        for (int bit = 0; bit < 8; ++bit)
            ASSERT_EQ(flags[size_t(bit)], ((value >> bit) & 1) != 0) << hex.constData() << " bit " << bit;
        ASSERT_EQ(FlagsToHex(flags), hex);
    }
    EXPECT_EQ(HexToFlags("D3"), (Flags{true, true, false, false, true, false, true, true}));
    EXPECT_EQ(HexToFlags("0"), Flags{});
    EXPECT_EQ(FlagsToHex(HexToFlags("FF")), QByteArray("FF"));
    // A one-digit register value comes out of the answer with a blank in front.
    EXPECT_EQ(HexToFlags(" 1"), (Flags{true}));
    // Far more digits than any integer holds: no number, never a conversion out of range.
    EXPECT_EQ(HexToFlags("FFFFFFFFFFFFFFFFFFFFFFFFFFFFFFFF"), Flags{});
}

TEST(Conversion, FieldBetween)
{
    const struct {
        const char *text, *start, *end, *field;
    } cases[] = {
        {"12,136:", ",", ":", "136"},     {"12,136:", ",", "", "136:"},
        {"12,136:7,8:", ",", ":", "136"}, {"136:", ",", ":", "136"}, // no start mark: from the beginning
        {"12,:", ",", ":", ""},
    };
    for (const auto &c : cases)
        EXPECT_EQ(FieldBetween(c.text, c.start, c.end), QByteArray(c.field)) << c.text << " " << c.end;
    EXPECT_THROW(FieldBetween("12,136", ",", ":"), FormatError);
    EXPECT_THROW(FieldBetween("1:2,3", ",", ":"), FormatError);
}

TEST(Conversion, ValueBeforeYes)
{
    const struct {
        const char *answer, *value;
    } cases[] = {
        {"bit?0 3A.Y\r\n\x11", "3A"}, {"var?D3 1.Y", " 1"}, {"x.Y", "x"}, {".Y", ""}, {"var?D3 .N", ""},
        {"ab.Ycd.Y", "ab"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(ValueBeforeYes(c.answer), QByteArray(c.value)) << c.answer;
}

TEST(Conversion, NumericValueReadsTheLeadingNumberWhateverTheLocale)
{
    const struct {
        const char *text;
        double value;
    } cases[] = {
        {"&HD3", 211}, {"&hff", 255}, {" 1.52abc", 1.52}, {"-3", -3},  {"+7", 7},
        {"", 0},       {"x", 0},      {"12,5", 12},       {".5", 0.5}, {"&H", 0},
    };
    for (const auto &c : cases)
        EXPECT_DOUBLE_EQ(NumericValue(c.text), c.value) << c.text;
}

TEST(Conversion, SecondsBeyondTheClockAreCutAndNoNumberIsNoWait)
{
    const Duration longest = FromSeconds(1e9);
    EXPECT_GT(longest, std::chrono::hours(24 * 365 * 30));
    for (const double endless : {1e300, std::numeric_limits<double>::infinity()})
        EXPECT_EQ(FromSeconds(endless), longest) << endless;
    EXPECT_EQ(FromSeconds(-std::numeric_limits<double>::infinity()), -longest);
    EXPECT_EQ(FromSeconds(std::numeric_limits<double>::quiet_NaN()), Duration::zero());
    EXPECT_EQ(FromSeconds(40), std::chrono::seconds(40));
    // A deadline an endless wait away is still on the clock.
    ManualClock clock;
    clock.advance(std::chrono::hours(24 * 365));
    EXPECT_GT(clock.now() + FromSeconds(1e300), clock.now());
}

TEST(Conversion, StripControlCharsAndSplitFields)
{
    EXPECT_EQ(StripControlChars("\x01"
                                "A\r\nB\x11\x1d\x1e\x1f\xea"),
              QByteArray("AB\x1e\x1f\xea"));
    const struct {
        const char *answer;
        QList<QByteArray> fields;
    } cases[] = {
        {"ver?;24.12.2003;01.01.04\r\n\x11", {"ver?", "24.12.2003", "01.01.04"}},
        {"a;;b", {"a", "", "b"}},
        {"", {""}},
    };
    for (const auto &c : cases)
        EXPECT_EQ(SplitFields(c.answer), c.fields) << c.answer;
}

TEST(Conversion, DisplayBytesForFilesAreWindowsBytesAndNothingElseChanges)
{
    const struct {
        QByteArray tester;
        QByteArray file;
    } cases[] = {
        {"\xe6\xea\x8e\x99\x9a\xe1\x84\x94\x81", "\xb5Ohm\xc4\xd6\xdc\xdf\xe4\xf6\xfc"},
        // Dropped codes go; the bytes the conversion leaves alone stay as they are, never "?" or 0x1A.
        {"A#B@C{|}~\x7f\r\n\x11\x13\xfd\xfe\xff;", "ABC;"},
        {"\x80\x9b\xb3\xc4\xda\xfc\xe4\xb5\xfa\xfb\xfc", "\x80\x9b\xb3\xc4\xda\xfc\xe4\xb5\xfa\xfb\xfc"},
        {"", ""},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(ConvertDisplayBytes(c.tester), c.file) << EscapeBytes(c.tester).toStdString();
        // Converted bytes are converted already: a second pass leaves them alone.
        EXPECT_EQ(ConvertDisplayBytes(c.file), c.file) << EscapeBytes(c.file).toStdString();
    }
    // Dropped exactly where the display drops, and the same letters below 128.
    for (int code = 0; code < 256; ++code) {
        const QByteArray byte(1, static_cast<char>(code));
        const QString shown = ConvertDisplayChar(static_cast<unsigned char>(code));
        EXPECT_EQ(ConvertDisplayBytes(byte).isEmpty(), shown.isEmpty()) << "code " << code;
        if (code < 128)
            EXPECT_EQ(ConvertDisplayBytes(byte), shown.toLatin1()) << "code " << code;
    }
}

TEST(Conversion, RecordTextShowsUmlautsWhetherRawOrConvertedAndKeepsItsSigns)
{
    const struct {
        QByteArray bytes;
        const char *shown; // UTF-8
    } cases[] = {
        {"M\x81ller", "Müller"}, // as the tester sends it
        {"M\xfcller", "Müller"}, // as the accessory read or an editor on Windows wrote it
        {"<0.3\xea", "<0.3Ohm"}, // raw ohm sign
        {"<0.3Ohm", "<0.3Ohm"},  // converted
        {"2\xe6"
         "A 2\xb5"
         "A",
         "2µA 2µA"},
        {"Stra\xe1"
         "e Stra\xdf"
         "e",
         "Straße Straße"},
        {"\x8e\x99\x9a\x84\x94 \xc4\xd6\xdc\xe4\xf6", "ÄÖÜäö ÄÖÜäö"},
        {"Nr. #12 @Werk {a|b} ~ \x80", "Nr. #12 @Werk {a|b} ~ €"},
        {"A\r\nB\x11\x13", "AB"},
        {"\xfd\xff", "ýÿ"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(DecodeRecordText(c.bytes), QString::fromUtf8(c.shown))
            << EscapeBytes(c.bytes).toStdString();
}

} // namespace
