// Reserved device names, the same on every system.
#include "FileSystem.h"

#include <QRegularExpression>

namespace kalvo::platform {

bool IsReservedFileName(const QString &fileName)
{
    static const QRegularExpression reserved(QStringLiteral("^(CON|PRN|AUX|NUL|COM[1-9]|LPT[1-9])([ .].*)?$"),
                                             QRegularExpression::CaseInsensitiveOption);
    QString name = fileName;
    while (name.endsWith(QLatin1Char(' ')) || name.endsWith(QLatin1Char('.')))
        name.chop(1);
    return reserved.match(name).hasMatch();
}

} // namespace kalvo::platform
