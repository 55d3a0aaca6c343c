// Whole files in and out, for tests.
#pragma once

#include <QByteArray>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QString>
#include <optional>

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

// Whether this system has pdftotext to read PDF files back (Windows has none).
inline bool HavePdfToText()
{
    return !QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty();
}

// What pdftotext reads from the PDF file at `path` with `options` ("-layout" keeps a report's
// columns, "-bbox" gives each word's place), or nothing where the system has no pdftotext
// (Windows): what a test checks of it is skipped there.
inline std::optional<QString> PdfText(const QString &path, const QStringList &options = {})
{
    if (!HavePdfToText())
        return std::nullopt;
    const QStringList arguments = options + QStringList{path, QStringLiteral("-")};
    QProcess pdftotext;
    pdftotext.start(QStringLiteral("pdftotext"), arguments);
    if (!pdftotext.waitForFinished(30000))
        return QStringLiteral("<pdftotext did not finish>");
    return QString::fromUtf8(pdftotext.readAllStandardOutput());
}

} // namespace kalvo::testing
