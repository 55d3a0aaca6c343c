// Variables, the configuration dump, the register switches and the limits against the virtual tester.
#include "config/Limits.h"
#include "config/Variables.h"
#include "link/Errors.h"
#include "link/TextRules.h"
#include "support/SimBench.h"

#include <gtest/gtest.h>

using namespace kalvo;
using config::LimitKind;
using kalvo::testing::SimBench;

TEST(Variables, ReadsBitsAndVariablesByTheirNamePrefix)
{
    const struct {
        const char *entry;
        QByteArray command;
        QByteArray value;
        int number;
        QString binary;
    } cases[] = {
        {"VMITBEZ#D3", "var?D3\r", "01", 1, "0000 0001"},
        {"PVKONTRAST#CF", "var?CF\r", "14", 20, "0001 0100"},
        {"BAUTOSTART#07", "bit?07\r", "10", 16, "0001 0000"},
        {"PBSERVICE#03", "bit?03\r", "00", 0, "0000 0000"},
        {"VUHVZ#D2", "var?D2\r", "10", 16, "0001 0000"},
    };
    for (const auto &c : cases) {
        SimBench s;
        const config::VariableReading reading = config::ReadVariable(s.link, QString::fromLatin1(c.entry));
        EXPECT_EQ(s.Lines(), QList<QByteArray>{c.command}) << c.entry;
        EXPECT_EQ(reading.value, c.value) << c.entry;
        EXPECT_EQ(reading.number, c.number) << c.entry;
        EXPECT_EQ(reading.binary, c.binary) << c.entry;
    }
}

TEST(Variables, BadEntriesAndRefusedReadsAreFormatErrors)
{
    for (const char *entry : {"XNAME#D3", "VMITBEZ", "VNONE#C0"}) {
        SimBench s;
        EXPECT_THROW(config::ReadVariable(s.link, QString::fromLatin1(entry)), link::FormatError) << entry;
    }
    EXPECT_EQ(config::ValueAfterEquals("xyz"), QByteArray("xy")); // no "=": the first two characters
}

TEST(Variables, DumpQueriesD0ToFfAndLabelsTheLinesInOrder)
{
    SimBench s;
    s.tester.model().working().Register(0xE3) = 0xA5;
    const config::ConfigurationDump dump = config::DumpConfiguration(s.link, {"VA\t first", "VB\t second"});
    const QList<QByteArray> lines = s.Lines();
    ASSERT_EQ(lines.size(), 48);
    EXPECT_EQ(lines.first(), QByteArray("var?D0\r"));
    EXPECT_EQ(lines.last(), QByteArray("var?FF\r"));
    ASSERT_EQ(dump.lines.size(), 48);
    EXPECT_EQ(dump.lines[0], QStringLiteral("D0: ==00 0000 0000VA\t first"));
    EXPECT_EQ(dump.lines[1], QStringLiteral("D1: ==02 0000 0010VB\t second"));
    EXPECT_EQ(dump.lines[0xE3 - 0xD0], QStringLiteral("E3: ==A5 1010 0101"));
    EXPECT_TRUE(dump.Text().endsWith(QStringLiteral("FF: ==00 0000 0000\r\n")));
}

TEST(Variables, TheDumpHandsOnEachLineAsSoonAsItsRegisterIsRead)
{
    SimBench s;
    QStringList seen;
    QList<qsizetype> askedBefore; // registers asked for when each line arrived
    const config::ConfigurationDump dump =
        config::DumpConfiguration(s.link, {"VA\t first"}, &s.prompter, [&](const QString &line) {
            seen << line;
            askedBefore << s.Lines().size();
        });
    ASSERT_EQ(seen.size(), config::ConfigurationDump::kRegisters);
    EXPECT_EQ(seen, dump.lines);
    for (qsizetype i = 0; i < askedBefore.size(); ++i)
        EXPECT_EQ(askedBefore[i], i + 1) << seen[i].toStdString();
    EXPECT_EQ(s.prompter.progressValues.size(), size_t(config::ConfigurationDump::kRegisters));
    EXPECT_TRUE(kalvo::testing::RisesTo100(s.prompter.progressValues));
}

TEST(Variables, SwitchesAndResetSendTheirExactBytes)
{
    const struct {
        config::RegisterSwitch which;
        bool checked;
        QByteArray sent;
    } cases[] = {
        {config::RegisterSwitch::MitBez, false, "var!D3 1\r"},
        {config::RegisterSwitch::MitBez, true, "var!D3 0\r"},
        {config::RegisterSwitch::Accessory, false, "var!E3 1\r"},
        {config::RegisterSwitch::Accessory, true, "var!E3 0\r"},
    };
    for (const auto &c : cases) {
        SimBench s;
        EXPECT_EQ(config::ToggleRegisterSwitch(s.link, c.which, c.checked), !c.checked);
        EXPECT_EQ(s.Lines(), QList<QByteArray>{c.sent});
    }
    SimBench s;
    config::ResetD3(s.link);
    EXPECT_EQ(s.Lines(), QList<QByteArray>{"var!D3,0\r"});
    EXPECT_EQ(s.tester.model().working().Register(0xD3), 0);
}

TEST(Variables, StoreReportsARefusedStore)
{
    for (const bool refused : {false, true}) {
        SimBench s;
        if (refused)
            s.tester.faults().add(QStringLiteral("refusestore:cfg!pgm"));
        EXPECT_EQ(config::StoreConfiguration(s.link, s.prompter), !refused);
        EXPECT_EQ(s.Lines(), QList<QByteArray>{"cfg!pgm\r"});
        EXPECT_EQ(s.prompter.messages.size(), refused ? 1u : 0u);
    }
}

TEST(Limits, WriteCommandsAreBuiltExactly)
{
    const struct {
        LimitKind kind;
        int value;
        QByteArray command;
    } cases[] = {
        {LimitKind::Kuschl, 15, "wer!bgwkuschl_ea<015.0 mA"},
        {LimitKind::Kuschl, 95, "wer!bgwkuschl_ea<095.0 mA"},
        {LimitKind::Ubez, 90, "wer!bgw601_UBEZ+90 V"},
        {LimitKind::Ubez, 300, "wer!bgw601_UBEZ+300 V"},
        {LimitKind::Pzhv, 5, "var!D25"},
        {LimitKind::Pzhv, 60, "var!D260"},
    };
    for (const auto &c : cases)
        EXPECT_EQ(config::LimitWriteCommand(c.kind, c.value), c.command);
}

TEST(Limits, WrittenValuesAreReadBackAndRefusalsAreReported)
{
    const struct {
        LimitKind kind;
        int value;
        bool accepted;
    } cases[] = {
        {LimitKind::Kuschl, 15, true},  {LimitKind::Kuschl, 95, true}, {LimitKind::Kuschl, 14, false},
        {LimitKind::Kuschl, 96, false}, {LimitKind::Ubez, 90, true},   {LimitKind::Ubez, 300, true},
        {LimitKind::Ubez, 301, false},  {LimitKind::Pzhv, 1, true},    {LimitKind::Pzhv, 5, true},
        {LimitKind::Pzhv, 10, true},    {LimitKind::Pzhv, 60, true},   {LimitKind::Pzhv, 0, false},
        {LimitKind::Pzhv, 61, false},
    };
    for (const auto &c : cases) {
        SimBench s;
        const int before = config::ReadLimit(s.link, c.kind);
        EXPECT_EQ(config::WriteLimit(s.link, s.prompter, c.kind, c.value), c.accepted) << c.value;
        EXPECT_EQ(config::ReadLimit(s.link, c.kind), c.accepted ? c.value : before) << c.value;
        if (c.accepted) {
            EXPECT_TRUE(s.prompter.messages.empty());
        } else {
            ASSERT_EQ(s.prompter.messages.size(), 1u);
            EXPECT_EQ(s.prompter.messages[0].text, QStringLiteral("Grenzwerteingabe falsch"));
        }
    }
}

TEST(Limits, StoredLimitsSurviveARestartUnstoredOnesDoNot)
{
    for (const bool store : {false, true}) {
        SimBench s;
        ASSERT_TRUE(config::WriteLimit(s.link, s.prompter, LimitKind::Ubez, 120));
        ASSERT_TRUE(config::WriteLimit(s.link, s.prompter, LimitKind::Pzhv, 25));
        if (store) {
            EXPECT_TRUE(config::StoreLimits(s.link, s.prompter));
        }
        s.Restart();
        EXPECT_EQ(config::ReadLimit(s.link, LimitKind::Ubez), store ? 120 : 250);
        EXPECT_EQ(config::ReadLimit(s.link, LimitKind::Pzhv), store ? 25 : 10);
    }
}

TEST(Limits, AnswersAreReadByTheirMarks)
{
    const struct {
        LimitKind kind;
        QByteArray answer;
        int value;
    } cases[] = {
        {LimitKind::Kuschl, "wer?bgwkuschl_ea BGW <030.0 mA.Y\r\n\x11", 30},
        {LimitKind::Ubez, "wer?bgw601_UBEZ BGW +250 V.Y\r\n\x11", 250},
        {LimitKind::Ubez, "BGW +090 V BGW +300 V", 90}, // only the first "BGW" counts
        {LimitKind::Pzhv, "var?D2=05.Y\r\n\x11", 5},
        {LimitKind::Pzhv, "var?D2=60.Y", 60},
        // Forms a tester may use that the virtual one does not.
        {LimitKind::Kuschl, " BGW <30.0mA.Y\x11", 30},
        {LimitKind::Ubez, "BGW  250 V.Y", 250},
        {LimitKind::Pzhv, "VAR?D2= 7.Y", 7},
        {LimitKind::Kuschl, "BGW <0120.0 mA.Y", 120}, // outside the frame's range: read all the same
    };
    for (const auto &c : cases)
        EXPECT_EQ(config::LimitValueFromAnswer(c.kind, c.answer), c.value) << c.answer.constData();
    const struct {
        LimitKind kind;
        QByteArray answer;
    } bad[] = {
        {LimitKind::Kuschl, "wer?bgwkuschl_ea .N"},
        {LimitKind::Pzhv, "var?D2 .N"},
        {LimitKind::Kuschl, "BGW <99999999999.0 mA.Y"}, // would wrap in an int
        {LimitKind::Ubez, "BGW +-250 V.Y"},
        {LimitKind::Pzhv, "var?D2=.Y"},
        {LimitKind::Ubez, "BGW"},
    };
    for (const auto &c : bad) {
        try {
            config::LimitValueFromAnswer(c.kind, c.answer);
            ADD_FAILURE() << c.answer.constData();
        } catch (const link::FormatError &e) {
            // The message names the command and shows what came.
            EXPECT_TRUE(e.text().contains(QString::fromLatin1(config::Limit(c.kind).readCommand)));
            EXPECT_TRUE(e.text().contains(link::EscapeBytes(c.answer))) << e.text().toStdString();
        }
    }
}

TEST(Limits, NamesRangesAndLabels)
{
    EXPECT_EQ(config::LimitKindFromName(QStringLiteral("kuschl")), LimitKind::Kuschl);
    EXPECT_EQ(config::LimitKindFromName(QStringLiteral("601_ubez")), LimitKind::Ubez);
    EXPECT_EQ(config::LimitKindFromName(QStringLiteral("PZHV")), LimitKind::Pzhv);
    EXPECT_EQ(config::LimitKindFromName(QStringLiteral("uhv")), std::nullopt);
    EXPECT_FALSE(config::InRange(LimitKind::Kuschl, 14));
    EXPECT_TRUE(config::InRange(LimitKind::Ubez, 300));
    EXPECT_FALSE(config::InRange(LimitKind::Pzhv, 61));
    EXPECT_EQ(config::LimitLabel(LimitKind::Kuschl, 15), QStringLiteral(" 15 mA"));
    EXPECT_EQ(config::LimitLabel(LimitKind::Pzhv, 5), QStringLiteral(" 5 s"));
}
