// The text of a test label's QR code.
#include "LabelCode.h"

#include "link/Errors.h"

#include <QStringList>

namespace kalvo::archive {

namespace {

const QString kMark = QStringLiteral("KALVO1");
constexpr QChar kSeparator = QLatin1Char(';');
constexpr QChar kEscape = QLatin1Char('\\');

QString Escaped(const QString &field)
{
    QString out;
    out.reserve(field.size());
    for (const QChar ch : field) {
        if (ch == kSeparator || ch == kEscape)
            out += kEscape;
        out += ch;
    }
    return out;
}

[[noreturn]] void Refuse(const QString &text, const QString &expected)
{
    throw link::FormatError(QStringLiteral("QR-Text \"%1\"").arg(text), 0, expected);
}

// The fields between unescaped separators, unescaped.
QStringList SplitFields(const QString &text)
{
    QStringList fields{QString()};
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar ch = text[i];
        if (ch == kEscape) {
            if (i + 1 == text.size())
                Refuse(text, QStringLiteral("ein Zeichen nach dem letzten \\"));
            fields.last() += text[++i];
        } else if (ch == kSeparator)
            fields << QString();
        else
            fields.last() += ch;
    }
    return fields;
}

} // namespace

QString LabelCodeText(const LabelCode &code)
{
    return QStringList{kMark, Escaped(code.customer), Escaped(code.deviceId),
                       code.nextTest.isValid() ? code.nextTest.toString(Qt::ISODate) : QString()}
        .join(kSeparator);
}

LabelCode ParseLabelCode(const QString &text)
{
    const QString expected = QStringLiteral("KALVO1;Kunde;ID-Nr;JJJJ-MM-TT");
    if (!text.startsWith(kMark + kSeparator))
        Refuse(text, expected);
    const QStringList fields = SplitFields(text);
    if (fields.size() != 4 || fields[2].isEmpty())
        Refuse(text, expected);
    LabelCode code{fields[1], fields[2], {}};
    if (!fields[3].isEmpty()) {
        code.nextTest = QDate::fromString(fields[3], Qt::ISODate);
        if (!code.nextTest.isValid() || fields[3].size() != 10)
            Refuse(text, QStringLiteral("ein Datum JJJJ-MM-TT statt \"%1\"").arg(fields[3]));
    }
    return code;
}

} // namespace kalvo::archive
