// Splitting a test record into fields and decoding its measurement code string.
#include "RecordDecoding.h"

#include "link/TextRules.h"

namespace kalvo::records {

RecordTooOld::RecordTooOld()
    : KalvoError(kRecordTooOldNumber,
                 QStringLiteral("Das Protokoll läßt sich nur aus dem Kalvomer ab Version 3.x generieren"))
{}

// The measured-value labels carry an underscore in four places and the PSPG value is paired with
// the UBEZ limit: that is how reports have always looked, and technicians compare them by eye.
const std::array<MeasurementLabels, kMeasurementCount> kMeasurementLabels = {{
    {"MW R-SL:     ", "GW R-SL:     "}, {"MW DR-SL:    ", "GW DR-SL:    "},
    {"MW R-ISO:    ", "GW R-ISO:    "}, {"MW U-ISO:    ", "GW U-ISO:    "},
    {"MW DI:       ", "GW DI:       "}, {"MW U-AC:     ", "GW U-AC:     "},
    {"MW U-DC:     ", "GW U-DC:     "}, {"MW EGA:      ", "GW EGA:      "},
    {"MW EPA:      ", "GW EPA:      "}, {"MW EA:       ", "GW EA:       "},
    {"MW EA-SF:    ", "GW EA-SF:    "}, {"MW GA:       ", "GW GA:       "},
    {"MW GA-SF:    ", "GW GA-SF:    "}, {"MW PA-AC:    ", "GW PA-AC:    "},
    {"MW PA-AC-SF: ", "GW PA-AC-SF: "}, {"MW PA_DC:    ", "GW PA-DC:    "},
    {"MW PA-DC-SF: ", "GW PA-DC-SF: "}, {"MW PH-AC:    ", "GW PH-AC:    "},
    {"MW PH_AC-SF: ", "GW PH-AC-SF: "}, {"MW PH_DC:    ", "GW PH-DC:    "},
    {"MW PH-DC-SF: ", "GW PH-DC-SF: "}, {"MW U-HV:     ", "GW U-HV:     "},
    {"MW PSPG:     ", "GW UBEZ:     "}, {"MW Iv:       ", "GW Iv        "},
}};

QByteArray DecodedRecord::Field(int number) const
{
    if (number < 1 || number > kMaxFields)
        return {};
    return fields[number];
}

QString RegulationName(int code)
{
    switch (code) {
    case 1: return QStringLiteral("DIN VDE 0701 Teil 1");
    case 2: return QStringLiteral("DIN VDE 0701 Teil 200");
    case 3: return QStringLiteral("DIN VDE 0701 Teil 240");
    case 4: return QStringLiteral("DIN VDE 0701 Teil 260");
    case 5: return QStringLiteral("DIN VDE 0702");
    case 6: return QStringLiteral("DIN VDE 0751");
    case 7: return QStringLiteral("EN 60061");
    case 8: return QStringLiteral("EN 60335");
    case 9: return QStringLiteral("EN 60950");
    default: return QStringLiteral("Kundenspezifisch");
    }
}

namespace {

// One character of the code string read as a hexadecimal digit; anything else counts as 0.
int HexDigitAt(const QByteArray &code, int position)
{
    return static_cast<int>(link::WholeNumber("&H" + code.mid(position - 1, 1), 0, 15).value_or(0));
}

// Characters 29 and 30 of the code string, the protection class plus 4, by their numeric value:
// a code string of 25 to 28 characters, blanks or characters that are no digits count 0, so the
// record is still shown, its class as the record gives it. Two characters hold no more than 99.
int ProtectionClassCode(const QByteArray &code)
{
    return static_cast<int>(link::NumericValue(code.mid(28, 2)));
}

QString AppliedPartName(const QByteArray &code)
{
    if (code == "01")
        return QStringLiteral("B");
    if (code == "02")
        return QStringLiteral("BF");
    if (code == "03")
        return QStringLiteral("CF");
    return {};
}

} // namespace

bool IsWholeRecordText(const QByteArray &line)
{
    QByteArrayView text(line);
    while (text.endsWith('\n') || text.endsWith('\r'))
        text.chop(1);
    // A record has at least its tester's name and its code string before the end mark.
    return text.endsWith("$FF") && text.count(';') >= 2 && !text.contains('\0');
}

DecodedRecord DecodeRecord(const QByteArray &recordText)
{
    QByteArray text = recordText;
    // The line end belongs to the file, not to the last field.
    while (text.endsWith('\n') || text.endsWith('\r'))
        text.chop(1);

    DecodedRecord record;
    int field = 1;
    // The first character marks where the record came from; it is never part of a field.
    for (qsizetype i = 1; i < text.size(); ++i) {
        const char ch = text[i];
        if (ch == ';') {
            ++field;
            continue;
        }
        if (field > kMaxFields)
            throw link::FormatError(QStringLiteral("Protokoll"), 0,
                                    QStringLiteral("höchstens %1 Felder").arg(kMaxFields));
        record.fields[field].append(ch);
    }

    const QByteArray &code = record.fields[2];
    if (code.size() < kMinCodeStringLength)
        throw RecordTooOld();

    record.protectionClass = QString::number(ProtectionClassCode(code) - 4);
    record.appliedPart = AppliedPartName(code.mid(30, 2));
    record.regulation = RegulationName(HexDigitAt(code, 13));
    record.verdict =
        HexDigitAt(code, 7) >= 7 ? QStringLiteral(" nicht bestanden") : QStringLiteral(" bestanden");
    return record;
}

} // namespace kalvo::records
