// Inputs for parsers that read files by path, and inputs cut into several parts.
#include "FuzzFiles.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace kalvo::fuzz {

QByteArray InputBytes(const uint8_t *data, size_t size)
{
    return QByteArray(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
}

QString ScratchFolder()
{
    static const QTemporaryDir folder(
        QDir(QDir("/dev/shm").exists() ? QStringLiteral("/dev/shm") : QDir::tempPath())
            .filePath(QStringLiteral("kalvo-fuzz-XXXXXX")));
    if (!folder.isValid()) {
        std::fprintf(stderr, "no scratch folder: %s\n", qPrintable(folder.errorString()));
        std::abort();
    }
    return folder.path();
}

QString WriteScratchFile(const QString &name, const QByteArray &bytes)
{
    const QString path = QDir(ScratchFolder()).filePath(name);
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size()) {
        std::fprintf(stderr, "cannot write %s: %s\n", qPrintable(path), qPrintable(file.errorString()));
        std::abort();
    }
    return path;
}

QList<QByteArray> SplitParts(const QByteArray &bytes, int count)
{
    QList<QByteArray> parts;
    qsizetype from = 0;
    for (int i = 0; i + 1 < count; ++i) {
        // Once the NULs run out, every further part is empty.
        const qsizetype nul = bytes.indexOf('\0', from);
        const qsizetype end = nul < 0 ? bytes.size() : nul;
        parts << bytes.mid(from, end - from);
        from = std::min(end + 1, bytes.size());
    }
    parts << bytes.mid(from);
    return parts;
}

void Expect(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "expectation failed: %s\n", what);
    std::abort();
}

} // namespace kalvo::fuzz
