// Record text files, the accessory's record file and the semicolon-separated export.
#include "RecordFiles.h"

#include "RecordRetrieval.h"
#include "RecordSteps.h"

#include "link/CodePages.h"
#include "link/Errors.h"
#include "link/Link.h"
#include "link/TextRules.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QHash>
#include <QLocale>
#include <QSaveFile>

namespace kalvo::records {

namespace {

QString Mebibytes(qint64 bytes)
{
    return QLocale::c().toString(static_cast<double>(bytes) / (1024 * 1024), 'f', 1) + QStringLiteral(" MiB");
}

QByteArray WithLineEnd(const QByteArray &line)
{
    return line.endsWith("\r\n") ? line : line + "\r\n";
}

// Report text is already display text: of the characters below 128 only those the display would
// drop go; the others are kept whatever they are.
QString WithoutDroppedChars(const QString &text)
{
    QString kept;
    kept.reserve(text.size());
    for (const QChar ch : text)
        if (ch.unicode() >= 128 ||
            !link::ConvertDisplayChar(static_cast<unsigned char>(ch.unicode())).isEmpty())
            kept += ch;
    return kept;
}

// An entry's own line ends are no characters of the export: the conversion would drop them, and
// counting them would end the row before the character that follows "$FF".
template <typename Text> Text WithoutLineEnds(Text text)
{
    text.removeIf([](auto ch) { return ch == u'\r' || ch == u'\n'; });
    return text;
}

// Appends `text` converted by `convert`, ending a line behind the third character after each "$".
// The countdown runs over the characters as they stand (line ends aside), dropped ones included,
// and goes on from one entry to the next.
template <typename Text, typename Convert>
void AppendCsvText(QByteArray &out, int &countdown, const Text &entry, Convert convert)
{
    const Text text = WithoutLineEnds(entry);
    qsizetype from = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (text[i] == u'$')
            countdown = 4;
        if (countdown > 0 && --countdown == 0) {
            out += convert(text.mid(from, i + 1 - from)) + "\r\n";
            from = i + 1;
        }
    }
    out += convert(text.mid(from));
}

} // namespace

QByteArray ReadWholeFile(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        throw link::FormatError(path, 0, QStringLiteral("eine lesbare Datei (%1)").arg(file.errorString()));
    const auto tooLarge = [&path](const QString &size) {
        return link::FormatError(
            path, 0,
            QStringLiteral("eine Datei von höchstens %1, nicht %2").arg(Mebibytes(kMaxFileBytes), size));
    };
    if (file.size() > kMaxFileBytes)
        throw tooLarge(Mebibytes(file.size()));
    if (!file.isSequential())
        return file.readAll();
    // A pipe or device tells no size: read it in pieces up to one byte beyond the limit. (Asking
    // for the whole limit at once would set aside that much memory for every file, however short.)
    constexpr qint64 kPiece = 64 * 1024;
    QByteArray bytes;
    for (QByteArray piece; !(piece = file.read(kPiece)).isEmpty();) {
        bytes += piece;
        if (bytes.size() > kMaxFileBytes)
            throw tooLarge(QStringLiteral("mehr als ") + Mebibytes(kMaxFileBytes));
    }
    return bytes;
}

QList<QByteArray> LoadRecordFile(const QString &path)
{
    QList<QByteArray> records;
    for (QByteArray line : ReadWholeFile(path).split('\n')) {
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

QByteArray EncodeShownText(const QString &text)
{
    QByteArray out;
    out.reserve(text.size());
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t u = text[i].unicode();
        if (u < 128) {
            out += static_cast<char>(u);
        } else if (const auto w = link::CodePageByte(link::CodePage::Windows1252, u)) {
            out += *w;
        } else if (const auto t = link::CodePageByte(link::CodePage::Ibm437, u)) {
            out += *t;
        } else {
            // Typed text beyond both code pages: kept as UTF-8 rather than lost.
            const qsizetype length = text[i].isHighSurrogate() && i + 1 < text.size() ? 2 : 1;
            out += text.mid(i, length).toUtf8();
            i += length - 1;
        }
    }
    return out;
}

StoreStatus StoreAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                  const QList<QByteArray> &table, const QString &reportText)
{
    const QString path = prompter.askSaveFile(kRecordFileFilter);
    if (path.isEmpty())
        return StoreStatus::Cancelled;
    const link::RefusalWatch watch(link);
    const std::optional<QByteArray> identity = Ask(link, "idn?");
    if (!identity) {
        TellNothingWritten(prompter, watch, path);
        return StoreStatus::Refused;
    }
    if (identity->contains(kAccessoryIdentity)) {
        WriteBytesFile(path, ReadWholeFile(logTmpPath));
        return StoreStatus::Written;
    }
    QByteArray bytes;
    for (int i = 0; i < kAccessoryTableSize; ++i)
        bytes += WithLineEnd(table.value(i));
    bytes += EncodeShownText(reportText);
    WriteBytesFile(path, bytes);
    return StoreStatus::Written;
}

QByteArray ExportCsv(const QByteArray &headerLine, const QList<QByteArray> &entries,
                     const QString &reportText)
{
    QByteArray out = headerLine + "\r\n;";
    int countdown = 0;
    // With no entry at all the report text stands in for entry 0 as well.
    const QList<QByteArray> table = entries.isEmpty() ? QList<QByteArray>{QByteArray()} : entries;
    for (qsizetype i = 0; i < table.size(); ++i) {
        if (i == 0 && table[0].isEmpty())
            AppendCsvText(out, countdown, reportText,
                          [](const QString &text) { return EncodeShownText(WithoutDroppedChars(text)); });
        else
            AppendCsvText(out, countdown, table[i], link::ConvertDisplayBytes);
    }
    return out;
}

QByteArray ReadCsvHeader(const QString &ueberCsvPath)
{
    QList<QByteArray> lines = ReadWholeFile(ueberCsvPath).split('\n');
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
