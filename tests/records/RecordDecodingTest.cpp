// Splitting records into fields, decoding the code string and the report laid out from it.
#include "RecordSamples.h"

#include "link/Errors.h"
#include "records/RecordDecoding.h"
#include "records/ReportBuilder.h"

#include <gtest/gtest.h>

using namespace kalvo;
using namespace kalvo::records;
using kalvo::testing::CodeString;
using kalvo::testing::RecordText;

namespace {

QString Joined(const QStringList &lines)
{
    return lines.join(QStringLiteral("\r\n")) + QStringLiteral("\r\n");
}

} // namespace

TEST(DecodeRecord, CodeStringGivesVerdictRegulationClassAndAppliedPart)
{
    const struct {
        QByteArray code;
        const char *verdict;
        const char *regulation;
        const char *protectionClass;
        const char *appliedPart;
    } cases[] = {
        {CodeString('7', '5', "05", "01"), " nicht bestanden", "DIN VDE 0702", "1", "B"},
        {CodeString('6', '6', "06", "02"), " bestanden", "DIN VDE 0751", "2", "BF"},
        {CodeString('F', '1', "04", "03"), " nicht bestanden", "DIN VDE 0701 Teil 1", "0", "CF"},
        {CodeString('0', 'A', "03", "00"), " bestanden", "Kundenspezifisch", "-1", ""},
        {CodeString('X', '0', "07", "04"), " bestanden", "Kundenspezifisch", "3", ""},
        {CodeString('1', '2', "05", "01"), " bestanden", "DIN VDE 0701 Teil 200", "1", "B"},
        {CodeString('1', '3', "05", "01"), " bestanden", "DIN VDE 0701 Teil 240", "1", "B"},
        {CodeString('1', '4', "05", "01"), " bestanden", "DIN VDE 0701 Teil 260", "1", "B"},
        {CodeString('1', '7', "05", "01"), " bestanden", "EN 60061", "1", "B"},
        {CodeString('1', '8', "05", "01"), " bestanden", "EN 60335", "1", "B"},
        {CodeString('1', '9', "05", "01"), " bestanden", "EN 60950", "1", "B"},
        // Exactly 25 characters: accepted, and the class positions are missing, so 0 - 4.
        {QByteArray("0000007000005000000000000"), " nicht bestanden", "DIN VDE 0702", "-4", ""},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.code.constData());
        const DecodedRecord record = DecodeRecord(RecordText({{1, "KALVO"}, {2, c.code}}));
        EXPECT_EQ(record.verdict, QString::fromUtf8(c.verdict));
        EXPECT_EQ(record.regulation, QString::fromUtf8(c.regulation));
        EXPECT_EQ(record.protectionClass, QString::fromUtf8(c.protectionClass));
        EXPECT_EQ(record.appliedPart, QString::fromUtf8(c.appliedPart));
    }
}

// The class is the numeric value of the two characters less 4: characters that are no digits
// give 0, and the record is still shown.
TEST(DecodeRecord, ProtectionClassIsTheNumericValueOfItsCharacters)
{
    const struct {
        QByteArray digits;
        const char *protectionClass;
    } cases[] = {
        {"05", "1"},  {" 5", "1"},  {"5x", "1"},  {"  ", "-4"},    {"-1", "-5"},
        {"99", "95"}, {"x5", "-4"}, {"&H", "-4"}, {"?\xea", "-4"}, {"+6", "2"},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.digits.constData());
        const QByteArray text = RecordText({{1, "KALVO"}, {2, CodeString('1', '5', c.digits, "01")}});
        const DecodedRecord record = DecodeRecord(text);
        EXPECT_EQ(record.protectionClass, QString::fromLatin1(c.protectionClass));
        EXPECT_EQ(record.appliedPart, QStringLiteral("B"));
    }
}

TEST(DecodeRecord, FieldsAreCountedFromTheSecondCharacterAndEmptyOnesKeepTheirNumber)
{
    const QByteArray code = CodeString('1', '5');
    const struct {
        QByteArray text;
        QList<QByteArray> fields; // fields 1..n expected
    } cases[] = {
        {"P" + QByteArray("A;") + code + ";;D;$FF\r\n", {"A", code, "", "D", "$FF"}},
        {";A;" + code + ";C\n", {"A", code, "C"}}, // a leading ";" is skipped like any first character
        {"PA;" + code + ";C;;;F", {"A", code, "C", "", "", "F"}}, // no line end at all
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.text.constData());
        const DecodedRecord record = DecodeRecord(c.text);
        for (int i = 0; i < c.fields.size(); ++i)
            EXPECT_EQ(record.Field(i + 1), c.fields[i]) << "field " << i + 1;
        EXPECT_TRUE(record.Field(static_cast<int>(c.fields.size()) + 1).isEmpty());
        EXPECT_TRUE(record.Field(0).isEmpty());
    }
}

TEST(DecodeRecord, RefusesOldRecordsAndMoreThan256Fields)
{
    try {
        DecodeRecord("PKALVO;" + QByteArray(24, '0') + ";4711;$FF\r\n");
        FAIL() << "a 24-character code string was accepted";
    } catch (const RecordTooOld &e) {
        EXPECT_EQ(e.number(), 31996);
        EXPECT_EQ(e.text(),
                  QStringLiteral("Das Protokoll läßt sich nur aus dem Kalvomer ab Version 3.x generieren"));
    }

    const QByteArray start = "PKALVO;" + CodeString('1', '5');
    // 256 fields are the most a record can have; a ";" behind the last one opens nothing.
    EXPECT_EQ(DecodeRecord(start + QByteArray(254, ';') + "last").Field(256), QByteArray("last"));
    EXPECT_NO_THROW(DecodeRecord(start + QByteArray(255, ';')));
    EXPECT_THROW(DecodeRecord(start + QByteArray(255, ';') + "x"), link::FormatError);
}

TEST(BuildReport, RecordWithAccessoryDataGivesTheWholeReport)
{
    const QByteArray ohm(1, '\xea');
    const DecodedRecord record = DecodeRecord(RecordText({
        {1, "KALVO-01"},
        {2, CodeString('2', '5', "05", "02")},
        {3, "4711"},
        {4, "Bohrmaschine"},
        {5, "17.03.09"},
        {6, "10:42"},
        {7, "0.12"},
        {8, "<0.300" + ohm},
        {11, ">19.9M" + ohm},
        {12, ">2.000M" + ohm},
        {16, "<0.500mA"},
        {51, "1.1"},
        {52, "2.2"},
        {53, "0.25mA"},
        {55, "18.03.09"},
        {56, "08:15"},
        {57, "Bohrer"},
        {58, "PSB 500"},
        {59, "Werkzeugbau"},
        {60, "A-17"},
        {61, "Meier"},
        {62, "Hauptstr. 1"},
        {63, "12345"},
        {64, "Musterstadt"},
        {65, "Kabel getauscht"},
        {66, "Stecker gepr\x81"
             "ft"},
        {74, "Ende"},
    }));
    const QString expected = Joined({
        "Prüfvorschrift:   DIN VDE 0702 bestanden",
        "",
        "Schutzklasse:   1\tTyp Anwendungsteil: BF",
        "",
        "TesterName:     KALVO-01",
        "Messtring:      00000020000050000000000000000502",
        "ID_Nr:          4711",
        "Typ:            Bohrmaschine",
        "Datum Kalvomer: 17.03.09",
        "Zeit Kalvomer:  10:42",
        "",
        "Messwerte:   \t\tGrenzwerte:",
        "MW R-SL:     0.12\tGW R-SL:     <0.300Ohm",
        "MW DR-SL:    \t\tGW DR-SL:    ",
        "MW R-ISO:    >19.9MOhm\tGW R-ISO:    >2.000MOhm",
        "MW U-ISO:    \t\tGW U-ISO:    ",
        "MW DI:       \t\tGW DI:       <0.500mA",
        "MW U-AC:     \t\tGW U-AC:     ",
        "MW U-DC:     \t\tGW U-DC:     ",
        "MW EGA:      \t\tGW EGA:      ",
        "MW EPA:      \t\tGW EPA:      ",
        "MW EA:       \t\tGW EA:       ",
        "MW EA-SF:    \t\tGW EA-SF:    ",
        "MW GA:       \t\tGW GA:       ",
        "MW GA-SF:    \t\tGW GA-SF:    ",
        "MW PA-AC:    \t\tGW PA-AC:    ",
        "MW PA-AC-SF: \t\tGW PA-AC-SF: ",
        "MW PA_DC:    \t\tGW PA-DC:    ",
        "MW PA-DC-SF: \t\tGW PA-DC-SF: ",
        "MW PH-AC:    \t\tGW PH-AC:    ",
        "MW PH_AC-SF: \t\tGW PH-AC-SF: ",
        "MW PH_DC:    \t\tGW PH-DC:    ",
        "MW PH-DC-SF: \t\tGW PH-DC-SF: ",
        "MW U-HV:     \t\tGW U-HV:     ",
        "MW PSPG:     1.1\tGW UBEZ:     2.2",
        "MW Iv:       0.25mA\tGW Iv        ",
        "Datum KYM  \t18.03.09\tUhrzeit KYM \t08:15",
        "Geräteart:  \tBohrer",
        "Typ        \tPSB 500",
        "Hersteller \tWerkzeugbau",
        "Id-Nr      \tA-17",
        "Name    \tMeier",
        "Strasse \tHauptstr. 1",
        "PLZ     \t12345",
        "Ort     \tMusterstadt",
        "Reparatur:",
        "Kabel getauscht",
        "Stecker geprüft",
        "",
        "",
        "",
        "",
        "",
        "",
        "",
        "Ende",
    });
    EXPECT_EQ(BuildReport(record), expected);
}

TEST(BuildReport, RecordWithoutAccessoryDateEndsAfterTheMeasurements)
{
    const DecodedRecord record = DecodeRecord(RecordText({
        {1, "KALVO-02"},
        {2, CodeString('9', 'C', "04", "00")},
        {5, "01.02.10"},
        {6, "07:00"},
        {35, "0.01mA"},
        {36, "<0.100mA"},
        {56, "08:15"}, // a time without a date does not open the accessory block
        {65, "never shown"},
    }));
    QStringList lines = {
        "Prüfvorschrift:   Kundenspezifisch nicht bestanden",
        "",
        "Schutzklasse:   0\tTyp Anwendungsteil: ",
        "",
        "TesterName:     KALVO-02",
        "Messtring:      000000900000C0000000000000000400",
        "ID_Nr:          ",
        "Typ:            ",
        "Datum Kalvomer: 01.02.10",
        "Zeit Kalvomer:  07:00",
        "",
        "Messwerte:   \t\tGrenzwerte:",
    };
    const QString report = BuildReport(record);
    EXPECT_TRUE(report.startsWith(Joined(lines))) << report.toStdString();
    EXPECT_TRUE(report.contains(QStringLiteral("\r\nMW PA-AC-SF: 0.01mA\tGW PA-AC-SF: <0.100mA\r\n")));
    EXPECT_TRUE(report.endsWith(QStringLiteral("\r\nMW Iv:       \t\tGW Iv        \r\n")));
    EXPECT_EQ(report.count(QStringLiteral("\r\n")), 12 + 24);
    EXPECT_FALSE(report.contains(QStringLiteral("KYM")));
    EXPECT_FALSE(report.contains(QStringLiteral("Reparatur")));
}

TEST(BuildReport, FieldTextsShowWholeWhetherInTesterOrWindowsBytes)
{
    const auto reportOf = [](const QByteArray &name, const QByteArray &limit) {
        return BuildReport(DecodeRecord(RecordText({{1, "KALVO"},
                                                    {2, CodeString('1', '5')},
                                                    {3, "#12 @Werk {3}"},
                                                    {8, limit},
                                                    {55, "18.03.09"},
                                                    {61, name}})));
    };
    const QString raw = reportOf("M\x81ller \x84\x94\xe1", "<0.3\xea");
    EXPECT_EQ(reportOf("M\xfcller \xe4\xf6\xdf", "<0.3Ohm"), raw);
    EXPECT_TRUE(raw.contains(QStringLiteral("\r\nName    \tMüller äöß\r\n"))) << raw.toStdString();
    EXPECT_TRUE(raw.contains(QStringLiteral("\r\nID_Nr:          #12 @Werk {3}\r\n"))) << raw.toStdString();
    EXPECT_TRUE(raw.contains(QStringLiteral("GW R-SL:     <0.3Ohm\r\n")));
}

TEST(MeasuredValueText, EmptyIsOneTabAndTesterCharactersAreShown)
{
    const struct {
        QByteArray field;
        QString shown;
    } cases[] = {
        {"", QStringLiteral("\t")},
        {"0.12", QStringLiteral("0.12")},
        {"12\xe6"
         "A",
         QStringLiteral("12µA")},
        {">2.0M\xea", QStringLiteral(">2.0MOhm")},
    };
    for (const auto &c : cases)
        EXPECT_EQ(MeasuredValueText(c.field), c.shown) << c.field.constData();
}
