// The report a person signs and keeps: each record's report with the company's header, the
// instrument, the inspector, the verdict, the next test, the hash and a line for the signature.
#pragma once

#include "ArchiveTypes.h"
#include "ReportSettings.h"

#include <QList>
#include <QString>
#include <QStringList>

namespace kalvo::archive {

class Archive;

// The lines under a report: instrument, inspector, verdict, next test, SHA-256, place, date and
// signature.
QString SignatureBlock(const ArchivedRecord &record, const QString &inspector);

// Writes the reports of the records `ids` to `path` as PDF/A, one report a page (longer ones go on),
// each followed by its SignatureBlock, every page under the header of `settings`. Needs a
// QGuiApplication for the fonts. Returns what the user should know of a report that was made all
// the same (a logo that could not be read); a missing record is an ArchiveError and the old file
// stays.
QStringList ExportSignedReportPdf(Archive &archive, const QList<qint64> &ids, const ReportSettings &settings,
                                  const QString &path);

} // namespace kalvo::archive
