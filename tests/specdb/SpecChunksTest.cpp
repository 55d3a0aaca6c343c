// The record as it goes to the tester: chunk bytes, running numbers, limit widths and set files.
#include "specdb/SpecChunks.h"
#include "specdb/SetFile.h"

#include "link/Errors.h"

#include <functional>

#include <gtest/gtest.h>

using namespace kalvo::specdb;

namespace {

const QDateTime kFivePastNine(QDate(2009, 3, 4), QTime(9, 5, 7));
const QByteArray kOhm = "\xEA";

SpecRecord RecordWithCodes()
{
    SpecRecord record;
    for (int i = 0; i < kCodeCount; ++i)
        record.codes[static_cast<size_t>(i)] = "00";
    record.codes[6] = "10";
    record.codes[14] = "05";
    record.codes[17] = "1F";
    return record;
}

const QByteArray kCodes = "00000000000010000000000000000500001F0000";

} // namespace

TEST(Chunks, EmptyLimitsKeepEverySeparator)
{
    SpecRecord record = RecordWithCodes();
    const RecordChunks chunks = BuildRecord(record, kFivePastNine);
    EXPECT_EQ(chunks.part1, " ;" + kCodes + ";04.03.09;9:5:7" + QByteArray(16, ';'));
    EXPECT_EQ(chunks.part2, QByteArray(16, ';'));
    EXPECT_EQ(chunks.part3, QByteArray(12, ';'));
    const auto commands = EditorCommands("05 Leer", chunks);
    EXPECT_EQ(commands[0], "prx!add 05 Leer; ;" + kCodes + ";04.03.09;9:5:7" + QByteArray(16, ';'));
    EXPECT_EQ(commands[1], "prx!add &9" + QByteArray(16, ';'));
    EXPECT_EQ(commands[2], "prx!add &17" + QByteArray(12, ';'));
    EXPECT_TRUE(chunks.replacedCodes.isEmpty());
}

TEST(Chunks, LimitsGoIntoTheirChunksBehindAnEmptyExtraField)
{
    SpecRecord record = RecordWithCodes();
    for (int box = 1; box <= kLimitBoxes; ++box)
        record.limits[static_cast<size_t>(box)] = "L" + QByteArray::number(box);
    record.limits[1] = "<0.300" + kOhm;
    record.extras[3] = "stale"; // extras never travel filled
    const RecordChunks chunks = BuildRecord(record, QDateTime(QDate(2010, 12, 31), QTime(23, 59, 0)));
    EXPECT_EQ(chunks.part1,
              " ;" + kCodes + ";31.12.10;23:59:0;;<0.300" + kOhm + ";;L2;;L3;;L4;;L5;;L6;;L7;;L8");
    EXPECT_EQ(chunks.part2, ";;L9;;L10;;L11;;L12;;L13;;L14;;L15;;L16");
    EXPECT_EQ(chunks.part3, ";;L17;;L18;;L19;;L20;;L21;;L22");
    EXPECT_TRUE(record.extras[3].isEmpty());
}

TEST(Chunks, CodeElementsOfTheWrongLengthGoOutAsDoubleZero)
{
    SpecRecord record = RecordWithCodes();
    record.codes[0] = "";
    record.codes[6] = "1";
    record.codes[19] = "ABC";
    record.codes[20] = "X"; // not sent, so not touched
    const RecordChunks chunks = BuildRecord(record, kFivePastNine);
    EXPECT_EQ(chunks.replacedCodes, (QList<int>{0, 6, 19}));
    EXPECT_EQ(chunks.part1.mid(2, 40), "00000000000000000000000000000500001F0000");
    EXPECT_EQ(record.codes[6], "00");
    EXPECT_EQ(record.codes[20], "X");
}

TEST(Chunks, RunningNumberHasTwoDigitsBelowTen)
{
    const struct {
        int entries;
        QByteArray label;
    } cases[] = {{0, "01 A"}, {4, "05 A"}, {8, "09 A"}, {9, "10 A"}, {41, "42 A"}, {120, "121 A"}};
    for (const auto &c : cases)
        EXPECT_EQ(RunningLabel(c.entries, "A"), c.label) << c.entries;
}

TEST(Chunks, LimitTextsMustHaveTheWidthOfTheirBox)
{
    const struct {
        int box;
        QByteArray text;
        bool fits;
    } cases[] = {
        {1, "", true},
        {1, "<0.300" + kOhm, true},
        {1, "<00.300" + kOhm, true},
        {1, "<0.30" + kOhm, false},
        {2, ">0.200" + kOhm, true},
        {3, ">2.000M" + kOhm, true},
        {3, ">2.000M", false},
        {4, ">0500V", true},
        {4, ">500V", false},
        {4, "<0.500mA", false},
        {5, "<3.500mA", true},
        {5, "<3.50mA", false},
        {6, "0120V", true},
        {7, "0120 V", false},
        {12, "<0.100mA", true},
        {12, "<0.1;0mA", false},
        {21, "<0.050m\x01", false},
        {22, ">3.50kV", true},
        {22, ">3.500kV", false},
        {0, "<0.500mA", false},
        {23, "<0.500mA", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(LimitFits(c.box, c.text), c.fits) << c.box << " " << c.text.toStdString();
    SpecRecord record;
    record.limits[4] = ">500V";
    record.limits[9] = "<0.05mA";
    EXPECT_EQ(MisfitLimits(record), (QList<int>{4, 9}));
}

TEST(Chunks, NamesWithoutSeparatorsOrControlCharacters)
{
    EXPECT_TRUE(UsableName("Werkstatt SK I"));
    EXPECT_TRUE(UsableName("Pr\x81"
                           "fung.Y"));
    EXPECT_FALSE(UsableName("A;B"));
    EXPECT_FALSE(UsableName("A\tB"));
    EXPECT_FALSE(UsableName("  "));
}

TEST(SetFiles, ThreeLinesARecordWhateverTheLineEnds)
{
    const QByteArray one = "01 A; ;codes;d;t\r\n;;1;;2\r\n;;13;;14\r\n";
    const auto groups = ParseSetText(one, QStringLiteral("a.set"));
    ASSERT_EQ(groups.size(), 1);
    EXPECT_EQ(SetCommands(groups[0]), (std::array<QByteArray, 3>{"prx!add 01 A; ;codes;d;t",
                                                                 "prx!add &1;;1;;2", "prx!add &13;;13;;14"}));
    EXPECT_EQ(SetText(groups), one);

    const QByteArray two = "a1\na2\na3\nb1\nb2\nb3\n\r\n  \r\n";
    const auto twoGroups = ParseSetText(two, QStringLiteral("b.set"));
    ASSERT_EQ(twoGroups.size(), 2);
    EXPECT_EQ(twoGroups[1], (SetGroup{"b1", "b2", "b3"}));
    EXPECT_EQ(ParseSetText("x1\r\nx2\r\nx3", QStringLiteral("c.set")).size(), 1);
    // Empty lines inside a record are lines: an all-empty item line stays a line.
    EXPECT_EQ(ParseSetText("x1\r\n\r\nx3\r\n", QStringLiteral("d.set"))[0][1], "");
}

TEST(SetFiles, AnIncompleteRecordIsAFormatErrorNamingItsLine)
{
    try {
        ParseSetText("a1\r\na2\r\na3\r\na4\r\n", QStringLiteral("vier.set"));
        FAIL() << "no error";
    } catch (const kalvo::link::FormatError &error) {
        EXPECT_TRUE(error.text().contains(QStringLiteral("vier.set"))) << error.text().toStdString();
        EXPECT_TRUE(error.text().contains(QStringLiteral("4"))) << error.text().toStdString();
    }
    // Stored from the file list, only the first record counts: the fourth line is not looked at.
    EXPECT_EQ(FirstSetGroup("a1\r\na2\r\na3\r\na4\r\n", QStringLiteral("vier.set")),
              (SetGroup{"a1", "a2", "a3"}));
    EXPECT_THROW(FirstSetGroup("a1\r\na2\r\n", QStringLiteral("zwei.set")), kalvo::link::FormatError);
    // Taking whole records, the lines behind them are counted, not an error.
    int leftOver = 0;
    EXPECT_EQ(WholeSetGroups("a1\r\na2\r\na3\r\na4\r\n", QStringLiteral("vier.set"), leftOver),
              (QList<SetGroup>{{"a1", "a2", "a3"}}));
    EXPECT_EQ(leftOver, 1);
}

TEST(SetFiles, AControlCharacterInARecordsLineIsAFormatErrorNamingTheLine)
{
    // It would go to the tester inside "prx!add " and shift or end what it stores.
    for (const char control : {'\0', '\x11', '\x04', '\x07', '\x1B', '\x7F'}) {
        SCOPED_TRACE(int(control));
        const QByteArray text = "01 A; ;x\r\n;" + QByteArray(1, control) + ";\r\n;;\r\n";
        int leftOver = 0;
        for (const auto &parse : std::initializer_list<std::function<void()>>{
                 [&] { ParseSetText(text, QStringLiteral("a.set")); },
                 [&] { WholeSetGroups(text, QStringLiteral("a.set"), leftOver); },
                 [&] { FirstSetGroup(text, QStringLiteral("a.set")); }}) {
            try {
                parse();
                ADD_FAILURE() << "no error";
            } catch (const kalvo::link::FormatError &error) {
                EXPECT_TRUE(error.text().contains(QStringLiteral("a.set"))) << error.text().toStdString();
                EXPECT_TRUE(error.text().contains(QStringLiteral("2"))) << error.text().toStdString();
            }
        }
    }
    EXPECT_EQ(ParseSetText("01 A; ;x\r\n;\xEA;\r\n;;\r\n", QStringLiteral("a.set")).size(), 1)
        << "the ohm sign is no control character";
}

TEST(Chunks, TypedTextsBecomeTheTestersBytes)
{
    const struct {
        QString typed;
        QByteArray bytes;
    } cases[] = {
        {QStringLiteral("<10.00\u00B5A"), "<10.00\xE6"
                                          "A"},
        {QStringLiteral("<10.00\u03BCA"), "<10.00\xE6"
                                          "A"}, // the Greek letter some keyboards give
        {QStringLiteral(">2.000MOhm"), ">2.000M\xEA"},
        {QStringLiteral("<0.300\u03A9"), "<0.300\xEA"},
        {QStringLiteral("<0.300\u2126"), "<0.300\xEA"},
        {QStringLiteral("Prüfung ÄÖÜäöüß"), "Pr\x81"
                                            "fung \x8E\x99\x9A\x84\x94\x81\xE1"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(LimitFromText(c.typed), c.bytes) << c.typed.toStdString();
    EXPECT_EQ(TesterText(QStringLiteral("DR. \u00B5-Labor")), "DR. \xE6-Labor");
    EXPECT_EQ(TesterText(QStringLiteral("DR. \u03BC-Labor")), "DR. \xE6-Labor");
}
