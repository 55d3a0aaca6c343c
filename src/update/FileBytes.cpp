// The update's files as bytes: lines of 8-bit text in, whole files out.
#include "FileBytes.h"

#include "link/Errors.h"

#include <QDir>
#include <QSaveFile>

namespace kalvo::update {

QList<QByteArray> SplitLines(const QByteArray &bytes)
{
    QList<QByteArray> lines;
    qsizetype start = 0;
    for (qsizetype i = 0; i < bytes.size(); ++i) {
        if (bytes[i] != '\r' && bytes[i] != '\n')
            continue;
        lines.append(bytes.mid(start, i - start));
        if (bytes[i] == '\r' && i + 1 < bytes.size() && bytes[i + 1] == '\n')
            ++i;
        start = i + 1;
    }
    if (start < bytes.size())
        lines.append(bytes.mid(start));
    return lines;
}

void SaveBytes(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw link::FormatError(QDir::toNativeSeparators(path), 0,
                                QStringLiteral("eine beschreibbare Datei (%1)").arg(file.errorString()));
}

} // namespace kalvo::update
