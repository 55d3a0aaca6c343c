// Record text files, the accessory's record file and the semicolon-separated export.
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

namespace kalvo::link {
class Link;
class Prompter;
} // namespace kalvo::link

namespace kalvo::records {

inline const QString kUeberCsvFileName = QStringLiteral("ueber.csv");
inline const QString kLogTmpFileName = QStringLiteral("log.tmp");
inline const QString kProtoFileName = QStringLiteral("proto.txt");
constexpr int kAccessoryTableSize = 12;
// The largest file read whole (record files, log.tmp, ueber.csv). A record file of a full store is
// about 100 KB and ueber.csv one line; 64 MiB is hundreds of times any real one, yet its records
// still fit in memory next to the reports made of them.
constexpr qint64 kMaxFileBytes = 64 * 1024 * 1024;

// The file's bytes; throws FormatError when it cannot be read or is larger than kMaxFileBytes
// (the message gives its size).
QByteArray ReadWholeFile(const QString &path);
// One record per line, each returned with its CR LF; empty lines are skipped (they hold no record).
// Throws FormatError when the file cannot be read or is too large.
QList<QByteArray> LoadRecordFile(const QString &path);
// Writes the records one per line (CR LF added where a record has none) through QSaveFile.
void WriteRecordFile(const QString &path, const QList<QByteArray> &records);
// Writes `bytes` whole through QSaveFile; throws FormatError when that fails.
void WriteBytesFile(const QString &path, const QByteArray &bytes);

// Text shown on screen (a report, typed text) as bytes of the program's files: Windows-1252 where
// it holds the character, else the tester's code page (the box drawing of its print texts), else
// UTF-8; nothing is replaced by a substitute.
QByteArray EncodeShownText(const QString &text);

enum class StoreStatus { Written, Cancelled, Refused };
// "protStore": with the accessory attached, log.tmp is copied to the file chosen in the save
// dialog; otherwise the accessory table (one entry a line) and then the report text are written.
// A refused "idn?" writes nothing (Refused, and the user is told).
StoreStatus StoreAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                  const QList<QByteArray> &table, const QString &reportText);

// The export's bytes: the header line and CR LF, ";", then every entry through the display
// conversion for files (ConvertDisplayBytes), a line ending behind the third character after each
// "$" ("$FF" and the character after it, the next record's first when a record ends there). The
// entries' own CR and LF are not counted nor written. An empty entry 0 is replaced by `reportText`
// (EncodeShownText, without the characters the display drops). Any number of entries is accepted.
QByteArray ExportCsv(const QByteArray &headerLine, const QList<QByteArray> &entries,
                     const QString &reportText);
// The last line of a header file such as ueber.csv, without its line end; throws FormatError when
// the file cannot be read.
QByteArray ReadCsvHeader(const QString &ueberCsvPath);
// ueber.csv in the current folder, else in the program's folder; empty when in neither.
QString FindUeberCsv();
// ExportCsv into `path` with the header from `ueberCsvPath` (FindUeberCsv() when empty). A missing
// header file stops the export before anything is written.
void ExportCsvFile(const QString &path, const QString &ueberCsvPath, const QList<QByteArray> &entries,
                   const QString &reportText);

} // namespace kalvo::records
