// Laying out the test report line by line from a decoded record.
#include "ReportBuilder.h"

#include "link/TextRules.h"

namespace kalvo::records {

namespace {

const QString kLineEnd = QStringLiteral("\r\n");
const QChar kTab = QLatin1Char('\t');

// Field texts are shown whole: a record file may hold the tester's bytes or converted ones, and
// both read right.
QString Shown(const DecodedRecord &record, int field)
{
    return link::DecodeRecordText(record.Field(field));
}

} // namespace

QString MeasuredValueText(const QByteArray &field)
{
    return field.isEmpty() ? QString(kTab) : link::DecodeRecordText(field);
}

QString BuildReport(const DecodedRecord &record)
{
    QString report;
    auto line = [&report](const QString &text) { report += text + kLineEnd; };

    line(QStringLiteral("Prüfvorschrift:   ") + record.regulation + record.verdict);
    line({});
    line(QStringLiteral("Schutzklasse:   ") + record.protectionClass + kTab +
         QStringLiteral("Typ Anwendungsteil: ") + record.appliedPart);
    line({});
    line(QStringLiteral("TesterName:     ") + Shown(record, 1));
    line(QStringLiteral("Messtring:      ") + Shown(record, 2));
    line(QStringLiteral("ID_Nr:          ") + Shown(record, 3));
    line(QStringLiteral("Typ:            ") + Shown(record, 4));
    line(QStringLiteral("Datum Kalvomer: ") + Shown(record, 5));
    line(QStringLiteral("Zeit Kalvomer:  ") + Shown(record, 6));
    line({});
    line(QStringLiteral("Messwerte:   ") + kTab + kTab + QStringLiteral("Grenzwerte:"));
    for (int i = 0; i < kMeasurementCount; ++i) {
        const int field = kFirstMeasurementField + 2 * i;
        line(QLatin1String(kMeasurementLabels[i].measured) + MeasuredValueText(record.Field(field)) + kTab +
             QLatin1String(kMeasurementLabels[i].limit) + Shown(record, field + 1));
    }

    // Records of the tester's own store carry no accessory data; their reports end here.
    if (record.Field(kAccessoryDateField).isEmpty())
        return report;
    line(QStringLiteral("Datum KYM  ") + kTab + Shown(record, 55) + kTab + QStringLiteral("Uhrzeit KYM ") +
         kTab + Shown(record, 56));
    line(QStringLiteral("Geräteart:  ") + kTab + Shown(record, 57));
    const QString labels[] = {
        QStringLiteral("Typ        "), QStringLiteral("Hersteller "), QStringLiteral("Id-Nr      "),
        QStringLiteral("Name    "),    QStringLiteral("Strasse "),    QStringLiteral("PLZ     "),
        QStringLiteral("Ort     "),
    };
    int field = 58;
    for (const QString &label : labels)
        line(label + kTab + Shown(record, field++));
    line(QStringLiteral("Reparatur:"));
    for (field = 65; field <= 74; ++field)
        line(Shown(record, field));
    return report;
}

} // namespace kalvo::records
