// The archive's records out to files: a CSV table and PDF reports that carry each record's hash.
#pragma once

#include "ArchiveQueries.h"
#include "ArchiveTypes.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

namespace kalvo::archive {

class Archive;

// The column titles of the CSV export, one per field of ArchivedRecord.
QStringList CsvColumns();
// One CSV line (without line end): the cells joined by ";", each quoted where it holds ";", a
// quote, a line break or blanks at its ends.
QString CsvLine(const QStringList &cells);
QStringList CsvCells(const ArchivedRecord &record);

// Writes the records `filter` finds to `path` through QSaveFile: UTF-8 with BOM, a header line, one
// line per record, CR LF. Returns how many; the old file stays when anything fails (ArchiveError).
qint64 ExportArchiveCsv(Archive &archive, const ArchiveFilter &filter, const QString &path);
// The same for records already found (a selection of a window).
qint64 WriteArchiveCsv(const QList<ArchivedRecord> &records, const QString &path);

// Record `id` with its bytes; a record that is not there is an ArchiveError naming it.
StoredRecord RecordOrError(Archive &archive, qint64 id);

// The record's report as the record window lays it out, with its SHA-256 under it, so that a
// printed report can be matched to the stored bytes. Throws what the records decoder throws.
QString ReportWithHash(const QByteArray &raw, const QByteArray &sha256);

// Writes the reports of the records `ids` (one a page, each with its hash) to `path` as PDF;
// needs a QGuiApplication for the fonts. Returns how many; a missing record is an ArchiveError and
// the old file stays.
int ExportArchivePdf(Archive &archive, const QList<qint64> &ids, const QString &path);

} // namespace kalvo::archive
