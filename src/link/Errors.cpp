// Failures that end a device operation.
#include "Errors.h"

#include "TextRules.h"

namespace kalvo::link {

KalvoError::KalvoError(int number, const QString &text)
    : std::runtime_error(QStringLiteral("%1:  %2").arg(number).arg(text).toStdString()), m_number(number),
      m_text(text)
{}

QString KalvoError::message() const
{
    return QStringLiteral("%1:  %2").arg(m_number).arg(m_text);
}

Timeout::Timeout() : KalvoError(kTimeoutNumber, QStringLiteral("Kein Kalvomer gefunden"))
{}

Timeout::Timeout(const QString &text) : KalvoError(kTimeoutNumber, text)
{}

PortError::PortError(Kind kind, const QString &text) : KalvoError(kPortErrorNumber, text), m_kind(kind)
{}

static QString DescribeFormat(const QString &where, int line, const QString &expected)
{
    if (line > 0)
        return QStringLiteral("%1, Zeile %2: erwartet %3").arg(where).arg(line).arg(expected);
    return QStringLiteral("%1: erwartet %2").arg(where, expected);
}

FormatError::FormatError(const QString &where, int line, const QString &expected)
    : KalvoError(kFormatErrorNumber, DescribeFormat(where, line, expected))
{}

FormatError FormatError::ForAnswer(const QByteArray &command, const QByteArray &answer,
                                   const QString &expected)
{
    constexpr qsizetype kShown = 80;
    QString came = EscapeBytes(answer.left(kShown));
    if (answer.size() > kShown)
        came += QStringLiteral("... (%1 Bytes)").arg(answer.size());
    return FormatError(QStringLiteral("Antwort auf %1 \"%2\"").arg(QString::fromLatin1(command), came), 0,
                       expected);
}

} // namespace kalvo::link
