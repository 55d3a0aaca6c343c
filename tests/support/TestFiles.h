// Whole files in and out, for tests.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

namespace kalvo::testing {

// The file's bytes, or "<missing>" when it cannot be read.
inline QByteArray ReadFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("<missing>");
}

inline bool WriteFile(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

// A file of `size` zero bytes that takes no time to write (sparse where the system allows).
inline bool MakeLargeFile(const QString &path, qint64 size)
{
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.resize(size);
}

} // namespace kalvo::testing
