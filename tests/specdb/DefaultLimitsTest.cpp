// The generator of default limits: the codes each regulation writes, the rows a reader can check
// against the regulations, the texts each box may take, and the looser-limit rule.
#include "specdb/DefaultLimits.h"
#include "link/LanguageTable.h"
#include "link/TextRules.h"
#include "specdb/DefaultLimitTable.h"
#include "specdb/LimitText.h"
#include "specdb/SpecChunks.h"

#include <QSet>
#include <QStringList>

#include <array>
#include <iterator>

#include <gtest/gtest.h>

using namespace kalvo::specdb;

namespace {

const QByteArray kOhmText(1, kOhm);

// A specification as the editor has it after a regulation was chosen: every element "00", then the
// class, its second coding, the type and the single-fault mask.
SpecRecord Chosen(const QByteArray &protectionClass, const QByteArray &appliedPart = "02")
{
    SpecRecord record;
    for (QByteArray &code : record.codes)
        code = "00";
    record.codes[14] = protectionClass;
    record.codes[15] = appliedPart;
    record.codes[8] = "20";
    return record;
}

SpecRecord Generated(int regulation, const QByteArray &protectionClass, const QByteArray &appliedPart = "02",
                     const QByteArray &switchCode = "00")
{
    SpecRecord record = Chosen(protectionClass, appliedPart);
    ApplyDefaults(record, regulation, switchCode);
    return record;
}

// "<0.300O" with "O" for the ohm sign, as the rows below are written.
QByteArray Text(const char *text)
{
    return QByteArray(text).replace('O', kOhmText);
}

} // namespace

TEST(DefaultLimits, TheRowsTheTesterIsKnownByComeOutExactly)
{
    const struct {
        Regulation regulation;
        const char *cls;
        const char *boxes[9]; // boxes 1, 3, 4, 5, 6, 7, 8, 12 and element 18; nullptr: not judged here
    } rows[] = {
        {Regulation::Vde0701T1,
         "05",
         {"<0.300O", ">1.000MO", ">0500V", "<3.500mA", "", "", "<3.500mA", "<0.500mA", "02"}},
        {Regulation::Vde0701T1, "07", {"", ">0.500MO", ">0500V", "", "0120V", "0120V", "", "", "00"}},
        {Regulation::Vde0701T1, "06", {"", ">2.000MO", ">0500V", "<0.500mA", "", "", "", "<0.500mA", "01"}},
        {Regulation::Vde0701T200,
         "05",
         {"<1.000O", ">0.500MO", ">0500V", "<3.500mA", nullptr, nullptr, nullptr, nullptr, nullptr}},
        {Regulation::Vde0701T200,
         "07",
         {"", ">2.000MO", ">0250V", "", "0120V", "0120V", "", nullptr, nullptr}},
        {Regulation::Vde0701T200,
         "06",
         {"", ">2.000MO", ">0500V", "<3.500mA", nullptr, nullptr, "<1.000mA", nullptr, nullptr}},
        {Regulation::Vde0702,
         "05",
         {"<0.300O", ">0.500MO", ">0500V", "<3.500mA", nullptr, nullptr, "<1.000mA", nullptr, nullptr}},
        {Regulation::Vde0702,
         "07",
         {"<0.300O", ">0.500MO", ">0500V", "", "0120V", "0120V", "", nullptr, nullptr}},
        {Regulation::Vde0702,
         "06",
         {"", ">2.000MO", ">0500V", "<0.500mA", nullptr, nullptr, "<1.000mA", nullptr, "01"}},
        {Regulation::Vde0751,
         "05",
         {"<0.300O", ">2.000MO", ">0500V", "<3.500mA", nullptr, nullptr, nullptr, "<1.000mA", nullptr}},
    };
    const int boxes[] = {1, 3, 4, 5, 6, 7, 8, 12};
    for (const auto &row : rows) {
        const SpecRecord record = Generated(static_cast<int>(row.regulation), row.cls);
        for (int i = 0; i < 8; ++i) {
            if (row.boxes[i]) {
                EXPECT_EQ(kalvo::link::EscapeBytes(record.limits[boxes[i]]),
                          kalvo::link::EscapeBytes(Text(row.boxes[i])))
                    << "regulation " << static_cast<int>(row.regulation) << ", class " << row.cls << ", box "
                    << boxes[i];
            }
        }
        if (row.boxes[8]) {
            EXPECT_EQ(record.codes[18], QByteArray(row.boxes[8]))
                << "regulation " << static_cast<int>(row.regulation) << ", class " << row.cls;
        }
    }
}

TEST(DefaultLimits, EachRegulationWritesItsCodesAndTheClassItsSecondCoding)
{
    const struct {
        int entry;
        const char *switchCode;
        const char *element6;
        const char *element17; // "??": left as it was
    } cases[] = {
        {0, "00", "10", "1F"},     {1, "00", "20", "??"}, {2, "00", "30", "20"},  {3, "00", "40", "21"},
        {4, "00", "50", "22"},     {5, "00", "60", "23"}, {6, "00", "70", "24"},  {7, "00", "90", "26"},
        {8, "00", "A0", "27"},     {9, "00", "B0", "28"}, {10, "00", "C0", "29"}, {11, "00", "D0", "30"},
        {11, "Menue", "80", "30"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.entry);
        SpecRecord record = Chosen("05");
        record.codes[17] = "??";
        ApplyDefaults(record, c.entry, c.switchCode);
        EXPECT_EQ(record.codes[6], QByteArray(c.element6));
        EXPECT_EQ(record.codes[17], QByteArray(c.element17));
    }
    const struct {
        const char *cls;
        const char *element1;
    } classes[] = {{"05", "01"}, {"06", "00"}, {"07", "02"}, {"04", "01"}, {"", "01"}};
    for (const auto &c : classes)
        EXPECT_EQ(Generated(0, c.cls).codes[1], QByteArray(c.element1)) << c.cls;
    EXPECT_EQ(Generated(2, "05").codes[18], QByteArray("01"));
    EXPECT_EQ(Generated(6, "06").codes[18], QByteArray("03"));
    EXPECT_EQ(Generated(7, "05").codes[18], QByteArray("03"));
    EXPECT_EQ(Generated(4, "05").codes[18], QByteArray("00"));
    EXPECT_EQ(Generated(4, "05", "02", "20").codes[19], QByteArray("20"));
    EXPECT_EQ(Generated(4, "05", "02", "Menue").codes[19], QByteArray("00"));
    // The elements a regulation does not own keep what the editor gave them.
    EXPECT_EQ(Generated(6, "05").codes[8], QByteArray("20"));
}

TEST(DefaultLimits, EveryCombinationWritesOnlyTextsItsBoxTakes)
{
    const QByteArray switches[] = {"00", "05", "01", "02", "20", "Menue"};
    int written = 0;
    for (int entry = 0; entry < kRegulationCount; ++entry) {
        for (const QByteArray cls : {"05", "06", "07"}) {
            for (const QByteArray type : {"00", "01", "02", "03"}) {
                for (const QByteArray &switchCode : switches) {
                    const SpecRecord record = Generated(entry, cls, type, switchCode);
                    const QList<BoxDefault> shown = DefaultsFor(entry, cls, type, switchCode);
                    for (int box = 1; box <= kLimitBoxes; ++box) {
                        const QByteArray &text = record.limits[box];
                        // What is shown with its source is what the generator writes.
                        EXPECT_EQ(shown[box - 1].text, text) << entry << ' ' << box;
                        EXPECT_EQ(shown[box - 1].source.isEmpty(), text.isEmpty()) << entry << ' ' << box;
                        if (text.isEmpty())
                            continue;
                        ++written;
                        QList<QByteArray> allowed;
                        for (const char *typed : AllowedTexts(box))
                            allowed << LimitFromText(QString::fromUtf8(typed));
                        EXPECT_TRUE(allowed.contains(text))
                            << "regulation " << entry << ", class " << cls.constData() << ", type "
                            << type.constData() << ", box " << box << ": "
                            << kalvo::link::EscapeBytes(text).toStdString();
                    }
                    for (int slot = 23; slot < kLimitSlots; ++slot)
                        EXPECT_TRUE(record.limits[slot].isEmpty());
                }
            }
        }
    }
    EXPECT_GT(written, 1000);
    // And every row of the table names where its value comes from, and only switch positions the
    // list holds.
    const QList<QByteArray> switchList(std::begin(switches), std::end(switches));
    for (const DefaultLimit &row : DefaultLimitRows()) {
        EXPECT_GT(QByteArray(row.source).size(), 10) << row.text;
        EXPECT_GE(row.box, 1);
        EXPECT_LE(row.box, kLimitBoxes);
        for (const QByteArray &code : QByteArray(row.switches ? row.switches : "00").split(' '))
            EXPECT_TRUE(switchList.contains(code)) << row.text << ' ' << code.constData();
    }
    // Every switch position and every box says what it is, in each of the program's languages,
    // in words of that language (a column left German would repeat the German).
    for (const kalvo::link::LanguageColumn &language : kalvo::link::LanguageColumns()) {
        const bool german = language.code == QLatin1String("de");
        for (const QByteArray &code : switchList) {
            const QString meaning = SwitchMeaningIn(code, language.name);
            EXPECT_FALSE(meaning.isEmpty()) << code.constData();
            EXPECT_EQ(meaning == SwitchMeaning(code), german)
                << code.constData() << " " << language.code.toStdString();
        }
        for (int box = 1; box <= kLimitBoxes; ++box)
            EXPECT_EQ(BoxMeaning(box, language.name) == BoxMeaning(box), german)
                << box << " " << language.code.toStdString();
    }
}

TEST(DefaultLimits, EveryTextOfEveryBoxIsWrittenBySomeCombination)
{
    const QByteArray switches[] = {"00", "05", "01", "02", "20", "Menue"};
    std::array<QSet<QByteArray>, kLimitSlots> written;
    for (int entry = 0; entry < kRegulationCount; ++entry)
        for (const QByteArray cls : {"05", "06", "07"})
            for (const QByteArray type : {"00", "01", "02", "03"})
                for (const QByteArray &switchCode : switches) {
                    const SpecRecord record = Generated(entry, cls, type, switchCode);
                    for (int box = 1; box <= kLimitBoxes; ++box)
                        written[box].insert(record.limits[box]);
                }
    QSet<QByteArray> everyText;
    for (int box = 1; box <= kLimitBoxes; ++box) {
        for (const char *text : AllowedTexts(box)) {
            const QByteArray limit = LimitFromText(QString::fromUtf8(text));
            everyText.insert(limit);
            EXPECT_TRUE(written[box].contains(limit))
                << "box " << box << " never gets " << kalvo::link::EscapeBytes(limit).toStdString();
        }
    }
    // The full set of texts the generator writes, each in at least one box.
    const char *texts[] = {"<0.300O",  "<1.000O",  ">0.200O",  ">0.500MO", ">1.000MO", ">2.000MO", ">7.000MO",
                           ">70.00MO", ">0250V",   ">0500V",   "0120V",    "<0.010mA", "<0.050mA", "<0.100mA",
                           "<0.250mA", "<0.500mA", "<1.000mA", "<2.000mA", "<2.500mA", "<3.500mA", "<05.00mA",
                           "<10.00mA", ">1.00kV",  ">1.50kV",  ">3.50kV"};
    for (const char *text : texts)
        EXPECT_TRUE(everyText.contains(Text(text))) << text;
    EXPECT_EQ(everyText.size(), static_cast<qsizetype>(std::size(texts)));
}

TEST(DefaultLimits, TheSwitchPositionChoosesTheMedicalDeviceCategoriesAndTheSupply)
{
    const struct {
        Regulation regulation;
        const char *cls;
        const char *switchCode;
        int box;
        const char *text;
        bool ours; // the source says the value is our choice
    } cases[] = {
        // Earth leakage of EN 60601-1 Table IV: general, its notes 2 and 4, note 3.
        {Regulation::En60601, "05", "00", 10, "<0.500mA", false},
        {Regulation::En60601, "05", "00", 11, "<1.000mA", false},
        {Regulation::En60601, "05", "Menue", 10, "<0.500mA", false},
        {Regulation::En60601, "05", "01", 10, "<2.500mA", false},
        {Regulation::En60601, "05", "20", 10, "<2.500mA", false},
        {Regulation::En60601, "05", "01", 11, "<2.000mA", true}, // 5 mA is not a text box 11 takes
        {Regulation::En60601, "05", "02", 10, "<05.00mA", false},
        {Regulation::En60601, "05", "02", 11, "<10.00mA", false},
        {Regulation::En60601, "06", "02", 10, "", false}, // no protective conductor, no earth leakage
        // The substitute equipment leakage of VDE 0751-1 by device category.
        {Regulation::Vde0751, "05", "00", 12, "<1.000mA", false},
        {Regulation::Vde0751, "05", "02", 12, "<10.00mA", false},
        {Regulation::Vde0751, "05", "20", 12, "<2.000mA", false},
        {Regulation::Vde0751, "05", "01", 12, "<2.000mA", true},
        {Regulation::Vde0751, "06", "02", 12, "<0.500mA", false},
        // The high-voltage level for a 115 V supply, never above the regulation's.
        {Regulation::En60601, "05", "05", 22, ">1.00kV", false},
        {Regulation::En60601, "06", "05", 22, ">1.50kV", true},
        {Regulation::En60601, "05", "00", 22, ">1.50kV", false},
        {Regulation::En60950, "05", "05", 22, ">1.00kV", false},
        {Regulation::En60950, "05", "00", 22, ">1.50kV", false},
        // The values no regulation gives.
        {Regulation::En60601, "05", "00", 2, ">0.200O", true},
        {Regulation::En61010, "06", "02", 2, ">0.200O", true},
        {Regulation::En60601, "07", "00", 2, "", false},
        {Regulation::Vde0751, "05", "00", 2, "", false},
        {Regulation::En61010, "05", "00", 13, "<1.000mA", true},
        // An appliance regulation does not know the categories.
        {Regulation::Vde0702, "05", "02", 8, "<1.000mA", false},
    };
    for (const auto &c : cases) {
        const int entry = static_cast<int>(c.regulation);
        SCOPED_TRACE(QStringLiteral("regulation %1, class %2, switch %3, box %4")
                         .arg(entry)
                         .arg(QString::fromLatin1(c.cls), QString::fromLatin1(c.switchCode))
                         .arg(c.box)
                         .toStdString());
        const SpecRecord record = Generated(entry, c.cls, "02", c.switchCode);
        EXPECT_EQ(kalvo::link::EscapeBytes(record.limits[c.box]), kalvo::link::EscapeBytes(Text(c.text)));
        EXPECT_EQ(record.codes[19],
                  QByteArray(c.switchCode) == "Menue" ? QByteArray("00") : QByteArray(c.switchCode));
        const BoxDefault shown = DefaultsFor(entry, c.cls, "02", c.switchCode).at(c.box - 1);
        EXPECT_EQ(shown.source.startsWith(QStringLiteral("unsere Wahl: ")), c.ours)
            << shown.source.toStdString();
    }
    // A limit is judged against the default of the record's own switch position.
    SpecRecord fixed = Generated(static_cast<int>(Regulation::En60601), "05", "02", "02");
    EXPECT_TRUE(LooserLimits(fixed, static_cast<int>(Regulation::En60601), "02").isEmpty());
    EXPECT_EQ(LooserLimits(fixed, static_cast<int>(Regulation::En60601), "00"), (QList<int>{10, 11}));
}

TEST(DefaultLimits, TheAppliedPartChoosesThePatientCurrentsOfTheMedicalRegulations)
{
    const char *patternA[] = {"<0.100mA", "<0.500mA", "<0.010mA", "<0.050mA",
                              "<0.100mA", "<0.500mA", "<0.010mA", "<0.050mA"};
    const char *patternC[] = {"<0.010mA", "<0.050mA", "<0.010mA", "<0.050mA",
                              "<0.010mA", "<0.050mA", "<0.010mA", "<0.050mA"};
    for (const int entry : {6, 7}) {
        for (const QByteArray cls : {"05", "06"}) {
            SCOPED_TRACE(QStringLiteral("regulation %1 class %2")
                             .arg(entry)
                             .arg(QString::fromLatin1(cls))
                             .toStdString());
            const SpecRecord none = Generated(entry, cls, "00");
            const SpecRecord b = Generated(entry, cls, "01");
            const SpecRecord bf = Generated(entry, cls, "02");
            const SpecRecord cf = Generated(entry, cls, "03");
            for (int box = 14; box <= 21; ++box) {
                EXPECT_TRUE(none.limits[box].isEmpty()) << box;
                EXPECT_EQ(b.limits[box], QByteArray(patternA[box - 14])) << box;
                EXPECT_EQ(bf.limits[box], QByteArray(patternA[box - 14])) << box;
                EXPECT_EQ(cf.limits[box], QByteArray(patternC[box - 14])) << box;
            }
            EXPECT_TRUE(b.limits[9].isEmpty());
            EXPECT_EQ(bf.limits[9], QByteArray("<05.00mA"));
            EXPECT_EQ(cf.limits[9], QByteArray("<0.050mA"));
            EXPECT_EQ(cf.limits[3], Text(">70.00MO"));
        }
    }
    // The appliance regulations know no patient currents.
    for (int box = 9; box <= 21; ++box)
        EXPECT_TRUE(Generated(4, "05", "03").limits[box].isEmpty()) << box;
    EXPECT_EQ(Generated(6, "05").limits[22], QByteArray(">1.50kV"));
    EXPECT_EQ(Generated(6, "06").limits[22], QByteArray(">3.50kV"));
}

TEST(DefaultLimits, RunningAgainReplacesWhatWasTypedAndEmptiesWhatTheChoiceDoesNotUse)
{
    SpecRecord record = Generated(0, "05");
    record.limits[1] = "<0.900" + kOhmText;
    record.limits[14] = "<9.000mA";
    record.limits[24] = "x";
    record.extras[3] = "y";
    record.codes[14] = "06";
    ApplyDefaults(record, 0, "00");
    EXPECT_TRUE(record.limits[1].isEmpty()); // class II has no protective conductor
    EXPECT_TRUE(record.limits[14].isEmpty());
    EXPECT_TRUE(record.limits[24].isEmpty());
    EXPECT_TRUE(record.extras[3].isEmpty());
    EXPECT_EQ(record.limits[3], Text(">2.000MO"));
}

TEST(LimitText, LimitsAreReadWithTheirSignUnitAndPrefix)
{
    const struct {
        QByteArray text;
        char sign;
        double value;
        const char *unit; // nullptr: no limit
    } cases[] = {
        {"<0.300" + kOhmText, '<', 0.3, "Ohm"},
        {">70.00M" + kOhmText, '>', 70e6, "Ohm"},
        {"<05.00mA", '<', 5e-3, "A"},
        {"<10.00\xE6"
         "A",
         '<', 10e-6, "A"}, // the tester's micro sign
        {">1.50kV", '>', 1500, "V"},
        {"0120V", 0, 120, "V"},
        {" <0.5mA ", '<', 0.5e-3, "A"},
        {"", 0, 0, nullptr},
        {"<mA", 0, 0, nullptr},
        {"<1e3mA", 0, 0, nullptr},
        {"<-1mA", 0, 0, nullptr},
        {"<0.5xA", 0, 0, nullptr},
        {"<0.5", 0, 0, nullptr},
    };
    for (const auto &c : cases) {
        const auto bound = ParseLimit(c.text);
        ASSERT_EQ(bound.has_value(), c.unit != nullptr) << c.text.constData();
        if (!bound)
            continue;
        EXPECT_EQ(bound->sign, c.sign) << c.text.constData();
        EXPECT_DOUBLE_EQ(bound->value, c.value) << c.text.constData();
        EXPECT_EQ(bound->unit, QByteArray(c.unit)) << c.text.constData();
    }
}

TEST(LimitText, ALimitIsLooserWhenItLetsThroughWhatTheRegulationStops)
{
    const struct {
        QByteArray text;
        QByteArray reference;
        bool looser;
    } cases[] = {
        {"<0.500mA", "<0.500mA", false},
        {"<0.50mA", "<0.500mA", false},  // the same value, written shorter
        {"<0.400mA", "<0.500mA", false}, // stricter
        {"<1.000mA", "<0.500mA", true},
        {"<0.001A", "<0.500mA", true}, // another prefix, still higher
        {">1.000M" + kOhmText, ">2.000M" + kOhmText, true},
        {">7.000M" + kOhmText, ">2.000M" + kOhmText, false},
        {">0250V", ">0500V", true},
        {">1.00kV", ">1.50kV", true},
        {">3.50kV", ">1.50kV", false},
        {"<1.000" + kOhmText, "<0.300" + kOhmText, true},
        {"", "<0.300" + kOhmText, true},         // a measurement switched off
        {"Hallo", "<0.300" + kOhmText, true},    // cannot be judged: asked about
        {"<0.300mA", "<0.300" + kOhmText, true}, // another unit
        {">0.300" + kOhmText, "<0.300" + kOhmText, true},
        {"0120V", "0120V", false},
        {"0050V", "0120V", true},
        {"<0.500mA", "", false}, // nothing to loosen
        {"", "", false},
    };
    for (const auto &c : cases)
        EXPECT_EQ(IsLooser(c.text, c.reference), c.looser)
            << kalvo::link::EscapeBytes(c.text).toStdString() << " against "
            << kalvo::link::EscapeBytes(c.reference).toStdString();
}

TEST(LimitText, TheLooserBoxesOfASpecificationAreNamedInOrder)
{
    SpecRecord record = Generated(5, "05", "03"); // VDE 0751, class I, CF
    EXPECT_TRUE(LooserLimits(record, 5, "00").isEmpty());
    record.limits[1] = "<1.000" + kOhmText;
    record.limits[9].clear();
    record.limits[12] = "<0.500mA";         // stricter than 1 mA: fine
    record.limits[2] = ">0.200" + kOhmText; // nothing is set there
    EXPECT_EQ(LooserLimits(record, 5, "00"), (QList<int>{1, 9}));
    // Judged against the class and type the record holds.
    record.codes[15] = "02";
    record.limits[9] = "<05.00mA";
    EXPECT_EQ(LooserLimits(record, 5, "00"), (QList<int>{1}));
}
