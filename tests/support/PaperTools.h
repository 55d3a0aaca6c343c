// PDF pages as pictures and QR codes read back from them, for tests of printed output.
#pragma once

#include <QDir>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <QStringList>
#include <optional>

namespace kalvo::testing {

inline bool HaveProgram(const char *name)
{
    return !QStandardPaths::findExecutable(QString::fromLatin1(name)).isEmpty();
}

// Page `page` (1-based) of the PDF `pdf` rendered by pdftoppm at `dpi` into the PNG `png`; false
// when pdftoppm failed (a test checks HaveProgram("pdftoppm") first).
inline bool RenderPdfPage(const QString &pdf, int page, int dpi, const QString &png)
{
    QString prefix = png;
    if (prefix.endsWith(QLatin1String(".png")))
        prefix.chop(4);
    QProcess pdftoppm;
    pdftoppm.start(QStringLiteral("pdftoppm"),
                   {QStringLiteral("-png"), QStringLiteral("-r"), QString::number(dpi), QStringLiteral("-f"),
                    QString::number(page), QStringLiteral("-l"), QString::number(page),
                    QStringLiteral("-singlefile"), pdf, prefix});
    return pdftoppm.waitForFinished(60000) && pdftoppm.exitCode() == 0;
}

// The texts of the QR codes zbarimg finds in the picture `png`, as UTF-8.
inline QStringList ReadQrCodes(const QString &png)
{
    QProcess zbarimg;
    zbarimg.start(QStringLiteral("zbarimg"),
                  {QStringLiteral("--quiet"), QStringLiteral("--raw"), QStringLiteral("-Sdisable"),
                   QStringLiteral("-Sqrcode.enable"), png});
    if (!zbarimg.waitForFinished(60000))
        return {QStringLiteral("<zbarimg did not finish>")};
    QString out = QString::fromUtf8(zbarimg.readAllStandardOutput());
    if (out.endsWith(QLatin1Char('\n')))
        out.chop(1);
    return out.isEmpty() ? QStringList() : out.split(QLatin1Char('\n'));
}

} // namespace kalvo::testing
