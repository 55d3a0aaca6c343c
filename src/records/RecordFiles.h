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

// One record per line, each returned with its CR LF; empty lines are skipped (they hold no record).
// Throws FormatError when the file cannot be read.
QList<QByteArray> LoadRecordFile(const QString &path);
// Writes the records one per line (CR LF added where a record has none) through QSaveFile.
void WriteRecordFile(const QString &path, const QList<QByteArray> &records);
// Writes `bytes` whole through QSaveFile; throws FormatError when that fails.
void WriteBytesFile(const QString &path, const QByteArray &bytes);

enum class StoreStatus { Written, Cancelled };
// "protStore": with the accessory attached, log.tmp is copied to the file chosen in the save
// dialog; otherwise the accessory table (one entry a line) and then the report text are written.
StoreStatus StoreAccessoryRecords(link::Link &link, link::Prompter &prompter, const QString &logTmpPath,
                                  const QList<QByteArray> &table, const QString &reportText);

// The export's bytes (Windows-1252): the header line and CR LF, ";", then every entry character by
// character through the display conversion, a line ending behind the third character after each
// "$". An empty entry 0 is replaced by `reportText`. Any number of entries is accepted.
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
