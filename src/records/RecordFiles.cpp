// Record text files, the accessory's record file and the semicolon-separated export.
#include "RecordFiles.h"

#include "RecordRetrieval.h"

#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QSaveFile>
#include <QStringEncoder>

namespace kalvo::records {

namespace {

QByteArray ReadWhole(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw link::FormatError(path, 0, QStringLiteral("eine lesbare Datei (%1)").arg(file.errorString()));
    return file.readAll();
}

QByteArray WithLineEnd(const QByteArray &line)
{
    return line.endsWith("\r\n") ? line : line + "\r\n";
}

// The program's own files are Windows text; what the code page cannot hold becomes "?".
QByteArray ToWindows1252(const QString &text)
{
    QStringEncoder encoder("windows-1252");
    if (!encoder.isValid())
        return text.toLatin1();
    return encoder.encode(text);
}

// Report text is already display text: only the characters the display conversion drops go.
QString ConvertShownChar(QChar ch)
{
    if (ch.unicode() < 128)
        return link::ConvertDisplayChar(static_cast<unsigned char>(ch.unicode()));
    return QString(ch);
}

} // namespace

QList<QByteArray> LoadRecordFile(const QString &path)
{
    QList<QByteArray> records;
    for (QByteArray line : ReadWhole(path).split('\n')) {
        if (line.endsWith('\r'))
            line.chop(1);
        if (!line.isEmpty())
            records << line + "\r\n";
    }
    return records;
}

void WriteBytesFile(const QString &path, const QByteArray &bytes)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size() || !file.commit())
        throw link::FormatError(path, 0,
                                QStringLiteral("eine schreibbare Datei (%1)").arg(file.errorString()));
}

void WriteRecordFile(const QString &path, const QList<QByteArray> &records)
{
    QByteArray bytes;
    for (const QByteArray &record : records)
        bytes += WithLineEnd(record);
    WriteBytesFile(path, bytes);
}

StoreStatus StoreAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                  const QList<QByteArray> &table, const QString &reportText)
{
    const QString path = prompter.askSaveFile(kRecordFileFilter);
    if (path.isEmpty())
        return StoreStatus::Cancelled;
    if (link.Exchange("idn?").contains(kAccessoryIdentity)) {
        WriteBytesFile(path, ReadWhole(logTmpPath));
        return StoreStatus::Written;
    }
    QByteArray bytes;
    for (int i = 0; i < kAccessoryTableSize; ++i)
        bytes += WithLineEnd(table.value(i));
    bytes += ToWindows1252(reportText);
    WriteBytesFile(path, bytes);
    return StoreStatus::Written;
}

QByteArray ExportCsv(const QByteArray &headerLine, const QList<QByteArray> &entries,
                     const QString &reportText)
{
    QString text;
    int countdown = 0;
    // The countdown runs over the characters as they stand, dropped ones included.
    auto put = [&text, &countdown](bool dollar, const QString &shown) {
        if (dollar)
            countdown = 4;
        text += shown;
        if (countdown > 0 && --countdown == 0)
            text += QStringLiteral("\r\n");
    };
    // With no entry at all the report text stands in for entry 0 as well.
    const QList<QByteArray> table = entries.isEmpty() ? QList<QByteArray>{QByteArray()} : entries;
    for (qsizetype i = 0; i < table.size(); ++i) {
        if (i == 0 && table[0].isEmpty()) {
            for (const QChar ch : reportText)
                put(ch == QLatin1Char('$'), ConvertShownChar(ch));
            continue;
        }
        for (const char ch : table[i])
            put(ch == '$', link::ConvertDisplayChar(static_cast<unsigned char>(ch)));
    }
    return headerLine + "\r\n;" + ToWindows1252(text);
}

QByteArray ReadCsvHeader(const QString &ueberCsvPath)
{
    QList<QByteArray> lines = ReadWhole(ueberCsvPath).split('\n');
    while (!lines.isEmpty() && (lines.last().isEmpty() || lines.last() == "\r"))
        lines.removeLast();
    if (lines.isEmpty())
        throw link::FormatError(ueberCsvPath, 0, QStringLiteral("eine Kopfzeile"));
    QByteArray header = lines.last();
    if (header.endsWith('\r'))
        header.chop(1);
    return header;
}

QString FindUeberCsv()
{
    if (QFile::exists(kUeberCsvFileName))
        return kUeberCsvFileName;
    const QString beside = QDir(QCoreApplication::applicationDirPath()).filePath(kUeberCsvFileName);
    return QFile::exists(beside) ? beside : QString();
}

void ExportCsvFile(const QString &path, const QString &ueberCsvPath, const QList<QByteArray> &entries,
                   const QString &reportText)
{
    const QString headerPath = ueberCsvPath.isEmpty() ? FindUeberCsv() : ueberCsvPath;
    if (headerPath.isEmpty())
        throw link::FormatError(kUeberCsvFileName, 0,
                                QStringLiteral("die Kopfzeilendatei im aktuellen Ordner oder beim Programm"));
    WriteBytesFile(path, ExportCsv(ReadCsvHeader(headerPath), entries, reportText));
}

} // namespace kalvo::records
