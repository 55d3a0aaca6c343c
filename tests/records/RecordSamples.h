// Record texts for the record tests, built field by field as the tester stores them.
#pragma once

#include <QByteArray>
#include <QList>
#include <QMap>

namespace kalvo::testing {

// A measurement code string of 32 characters with the given result, regulation, class and applied part.
inline QByteArray CodeString(char result, char regulation, const QByteArray &classCode = "05",
                             const QByteArray &appliedPart = "01")
{
    QByteArray code(32, '0');
    code[6] = result;
    code[12] = regulation;
    code.replace(28, 2, classCode);
    code.replace(30, 2, appliedPart);
    return code;
}

// "P" + fields 1..74 (empty unless given) separated by ";" + ";$FF" CR LF.
inline QByteArray RecordText(const QMap<int, QByteArray> &fields)
{
    QByteArray text = "P";
    for (int i = 1; i <= 74; ++i)
        text += fields.value(i) + ';';
    return text + "$FF\r\n";
}

} // namespace kalvo::testing
