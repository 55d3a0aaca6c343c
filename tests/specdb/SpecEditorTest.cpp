// The editor's choices and what they write into the record; records read back into the editor.
#include "specdb/SpecEditor.h"
#include "specdb/SpecDecoding.h"
#include "specdb/SpecStore.h"

#include "link/Errors.h"

#include <gtest/gtest.h>

using namespace kalvo::specdb;

namespace {

struct GeneratorCall {
    int regulation;
    QByteArray switchCode;
    QByteArray classCode;
    QByteArray typeCode;
};

// A generator that leaves its mark in box 1, so that a rerun shows.
struct RecordingGenerator {
    std::vector<GeneratorCall> calls;
    SpecEditor::Generator Function()
    {
        return [this](SpecRecord &record, int regulation, const QByteArray &switchCode) {
            calls.push_back({regulation, switchCode, record.codes[14], record.codes[15]});
            record.limits[1] = "<0.300\xEA";
        };
    }
};

QList<QByteArray> SpecificationFields(const QByteArray &codes)
{
    QList<QByteArray> fields{"DATABASE  Nr=2", codes, "02 Werkstatt", "04.03.09", "9:5:7"};
    for (int box = 1; box <= kLimitBoxes; ++box)
        fields << QByteArray() << (box == 3 ? QByteArray(">2.000M\xEA") : QByteArray());
    return fields;
}

} // namespace

TEST(Editor, ChoosingARegulationStartsFromTheSameCodesEveryTime)
{
    RecordingGenerator generator;
    SpecEditor editor(generator.Function());
    editor.ChooseRegulation(0);
    editor.ChooseClass(3);
    editor.ChooseAppliedParts(4);
    editor.SetLimit(5, "<9.999mA");
    editor.ChooseRegulation(5);
    const SpecRecord first = editor.record();
    editor.ChooseRegulation(5);
    EXPECT_EQ(editor.record().codes, first.codes);
    EXPECT_EQ(editor.record().limits, first.limits);
    EXPECT_TRUE(editor.record().limits[5].isEmpty());
    for (int i = 0; i < kCodeCount; ++i) {
        const QByteArray expected = i == 1 ? "01" : i == 8 ? "20" : i == 14 ? "05" : i == 15 ? "02" : "00";
        EXPECT_EQ(editor.record().codes[static_cast<size_t>(i)], expected) << i;
    }
    EXPECT_EQ(editor.classEntry(), 0);
    EXPECT_EQ(editor.typeEntry(), 2);
    EXPECT_EQ(editor.appliedParts(), 0);
    EXPECT_EQ(editor.singleFaults(), (std::array<bool, 4>{false, true, false, false}));
    ASSERT_FALSE(generator.calls.empty());
    EXPECT_EQ(generator.calls.back().regulation, 5);
    EXPECT_EQ(generator.calls.back().classCode, "05");
    EXPECT_EQ(generator.calls.back().typeCode, "02");
}

TEST(Editor, ClassTypeAndSwitchRerunTheDefaultsAppliedPartsDoNot)
{
    RecordingGenerator generator;
    SpecEditor editor(generator.Function());
    editor.ChooseRegulation(6);
    const struct {
        int entry;
        QByteArray code;
    } classes[] = {{0, "05"}, {1, "05"}, {2, "06"}, {3, "07"}};
    for (const auto &c : classes) {
        editor.SetLimit(1, "typed");
        editor.ChooseClass(c.entry);
        EXPECT_EQ(editor.record().codes[14], c.code) << c.entry;
        EXPECT_EQ(generator.calls.back().classCode, c.code);
        EXPECT_EQ(editor.record().limits[1], "<0.300\xEA") << "a rerun replaces what was typed";
    }
    const size_t before = generator.calls.size();
    editor.ChooseAppliedParts(10);
    EXPECT_EQ(editor.record().codes[16], "10");
    editor.ChooseAppliedParts(3);
    EXPECT_EQ(editor.record().codes[16], "03");
    EXPECT_EQ(generator.calls.size(), before);
    editor.ChooseSwitch("Menue");
    EXPECT_EQ(generator.calls.back().switchCode, "Menue");
}

TEST(Editor, TypeDecidesWhetherAppliedPartsMayBeInsulated)
{
    SpecEditor editor;
    editor.ChooseRegulation(6);
    const struct {
        int entry;
        QByteArray code;
        bool enabled;
        bool keptOn;
    } types[] = {
        {2, "02", true, true}, {3, "03", true, true}, {0, "00", true, false}, {1, "01", false, false}};
    for (const auto &t : types) {
        editor.ChooseType(2);
        editor.SetInsulatedParts(true);
        editor.ChooseType(t.entry);
        EXPECT_EQ(editor.record().codes[15], t.code);
        EXPECT_EQ(editor.insulatedPartsEnabled(), t.enabled) << t.entry;
        EXPECT_EQ(editor.insulatedParts(), t.keptOn) << t.entry;
    }
    editor.SetInsulatedParts(true);
    EXPECT_FALSE(editor.insulatedParts()) << "a disabled box cannot be ticked";
}

TEST(Editor, SingleFaultBoxesMakeElementEight)
{
    const struct {
        std::array<bool, 4> boxes;
        QByteArray code;
    } cases[] = {
        {{false, false, false, false}, "00"}, {{false, true, false, false}, "20"},
        {{true, false, false, false}, "01"},  {{false, false, true, true}, "C0"},
        {{true, true, true, true}, "E1"},
    };
    SpecEditor editor;
    for (const auto &c : cases) {
        editor.SetSingleFaults(c.boxes);
        EXPECT_EQ(editor.record().codes[8], c.code);
        EXPECT_EQ(editor.singleFaults(), c.boxes);
    }
}

TEST(Editor, RegulationNamesFollowTheFirstDigitOfElementSix)
{
    const struct {
        QByteArray element;
        QString name;
        int entry;
    } cases[] = {
        {"10", QStringLiteral("VDE 0701 T.1"), 0},
        {"5F", QStringLiteral("VDE 0702"), 4},
        {"70", QStringLiteral("EN 60601"), 6},
        {"80", QStringLiteral("MENUE"), -1},
        {"90", QStringLiteral("EN 61010"), 7},
        {"c0", QStringLiteral("British Standard"), 10},
        {"00", QString(), -1},
        {"D0", QString(), -1},
        {"E0", QString(), -1},
        {"F0", QString(), -1},
        {"", QString(), -1},
        {"G0", QString(), -1},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(RegulationName(c.element), c.name) << c.element.toStdString();
        EXPECT_EQ(RegulationEntry(c.element), c.entry) << c.element.toStdString();
    }
    EXPECT_EQ(RegulationList().size(), 12);
    EXPECT_EQ(RegulationList().last(), QStringLiteral("custom"));
}

TEST(Editor, ASpecificationReadBackFillsTheListsAndTheLimits)
{
    SpecEditor editor;
    editor.record().codes[22] = "AB";
    editor.SetLimit(7, "0120V");
    // Elements 6 "80" (MENUE), 8 "c1", 14 "07", 15 "03", 16 "05", 17 "1f", in lower case.
    const QByteArray codes =
        "0002" + QByteArray("00").repeated(4) + "8000c1" + QByteArray("00").repeated(5) + "0703051f0000";
    BoxTexts limits;
    limits[3] = ">2.000M\xEA";
    EXPECT_TRUE(editor.Decode(SpecificationFields(codes), limits, 2));
    EXPECT_EQ(editor.regulationName(), QStringLiteral("MENUE"));
    EXPECT_EQ(editor.regulationEntry(), -1);
    EXPECT_EQ(editor.record().codes[8], "C1");
    EXPECT_EQ(editor.classEntry(), 3);
    EXPECT_EQ(editor.typeEntry(), 3);
    EXPECT_EQ(editor.appliedParts(), 5);
    EXPECT_EQ(editor.record().codes[17], "1F");
    EXPECT_EQ(editor.switchCode(), "Menue");
    EXPECT_EQ(editor.record().codes[22], "AB") << "elements that never travel stay";
    EXPECT_EQ(editor.record().limits[3], ">2.000M\xEA");
    EXPECT_TRUE(editor.record().limits[7].isEmpty()) << "the record's empty box replaces the typed one";

    // Limits the store could not place are no guess: every box is empty, the codes are shown.
    editor.SetLimit(7, "0120V");
    EXPECT_FALSE(
        editor.Decode({"DATABASE", "0000000000001000000000000000050200000000", "01 X"}, std::nullopt, 1));
    EXPECT_EQ(editor.regulationEntry(), 0);
    EXPECT_EQ(editor.record().limits, BoxTexts{});
}

TEST(Editor, OpeningASpecificationSetsTheSwitchPositionFromElement19)
{
    const struct {
        QByteArray element6;
        QByteArray element19;
        QByteArray switchCode;
    } cases[] = {
        {"10", "05", "05"}, {"50", "01", "01"},    {"70", "02", "02"}, {"90", "20", "20"},
        {"D0", "00", "00"}, {"80", "00", "Menue"}, {"20", "7F", "00"},
    };
    for (const auto &c : cases) {
        SpecEditor editor;
        editor.ChooseSwitch("05");
        const QByteArray codes = "000000000000" + c.element6 + QByteArray(24, '0') + c.element19;
        editor.Decode(SpecificationFields(codes), BoxTexts{}, 3);
        EXPECT_EQ(editor.switchCode(), c.switchCode)
            << c.element6.constData() << ' ' << c.element19.constData();
    }
}

TEST(Editor, ABrokenCodeStringChangesNothing)
{
    SpecEditor editor;
    editor.ChooseRegulation(1);
    const SpecRecord before = editor.record();
    for (const QByteArray &codes : {QByteArray("10000000"), QByteArray(40, 'X'), QByteArray()}) {
        EXPECT_THROW(editor.Decode(SpecificationFields(codes), BoxTexts{}, 4), kalvo::link::FormatError);
        EXPECT_EQ(editor.record().codes, before.codes);
        EXPECT_EQ(editor.regulationEntry(), 1);
    }
}

TEST(Editor, AStoredRecordDecodesAsItWasSent)
{
    SpecEditor editor;
    editor.ChooseRegulation(2);
    editor.ChooseType(3);
    editor.ChooseSwitch("20");
    editor.record().codes[19] = "20";
    editor.SetLimit(12, "<0.100mA");
    SpecStore store;
    store.AppendStored(editor.record(), "07 Neu");
    ASSERT_EQ(store.count(), 1);
    EXPECT_EQ(store.entries, QStringList{QStringLiteral("1: 07 Neu")});
    EXPECT_EQ(store.records[0].size(), LimitField(kLimitBoxes) + 1);
    EXPECT_EQ(store.records[0][2], "07 Neu");
    EXPECT_TRUE(store.IsSpecification(1));
    SpecEditor other;
    EXPECT_TRUE(other.Decode(store.records[0], store.limits[0], 1));
    for (int k = 0; k < kSentCodes; ++k)
        EXPECT_EQ(other.record().codes[static_cast<size_t>(k)],
                  editor.record().codes[static_cast<size_t>(k)]);
    EXPECT_EQ(other.record().limits, editor.record().limits);
    EXPECT_EQ(other.switchCode(), "20");
}
