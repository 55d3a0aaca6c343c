// The update's files as bytes: whole files out (lines in are link::SplitLines).
#include "FileBytes.h"

#include "link/Errors.h"

#include <QDir>
#include <QSaveFile>

namespace kalvo::update {

void SaveBytes(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw link::FormatError(QDir::toNativeSeparators(path), 0,
                                QStringLiteral("eine beschreibbare Datei (%1)").arg(file.errorString()));
}

} // namespace kalvo::update
