// The archive's records out to files: a CSV table and PDF reports that carry each record's hash.
#include "ArchiveExport.h"

#include "Archive.h"
#include "ArchiveQueries.h"

#include "records/ReportBuilder.h"
#include "records/print/ReportDocument.h"

#include <QFileInfo>
#include <QSaveFile>

namespace kalvo::archive {

namespace {

QString Day(const QDate &date)
{
    return date.isValid() ? date.toString(Qt::ISODate) : QString();
}

QString Moment(const QDateTime &time)
{
    return time.isValid() ? time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")) : QString();
}

} // namespace

QStringList CsvColumns()
{
    return {QStringLiteral("Nr"),           QStringLiteral("SHA-256"),
            QStringLiteral("Prüfgerät"),    QStringLiteral("ID-Nr"),
            QStringLiteral("Typ"),          QStringLiteral("Prüfdatum"),
            QStringLiteral("Vorschrift"),   QStringLiteral("Ergebnis"),
            QStringLiteral("Schutzklasse"), QStringLiteral("Anwendungsteil"),
            QStringLiteral("Geräteart"),    QStringLiteral("KYM-Typ"),
            QStringLiteral("Hersteller"),   QStringLiteral("KYM-Id-Nr"),
            QStringLiteral("Kunde"),        QStringLiteral("Strasse"),
            QStringLiteral("PLZ"),          QStringLiteral("Ort"),
            QStringLiteral("Quelle"),       QStringLiteral("Seriennummer"),
            QStringLiteral("Zubehör"),      QStringLiteral("Datei"),
            QStringLiteral("Importiert"),   QStringLiteral("Nächste Prüfung")};
}

QStringList CsvCells(const ArchivedRecord &r)
{
    return {QString::number(r.id),
            QString::fromLatin1(r.sha256),
            r.testerName,
            r.deviceId,
            r.deviceType,
            Moment(r.testedAt),
            r.regulation,
            r.verdict,
            r.protectionClass,
            r.appliedPart,
            r.accessoryKind,
            r.accessoryType,
            r.maker,
            r.accessoryDeviceId,
            r.customer,
            r.street,
            r.postCode,
            r.town,
            r.source.tester,
            r.source.testerSerial,
            r.source.accessory,
            r.source.file,
            Moment(r.importedAt),
            Day(r.nextTest)};
}

QString CsvLine(const QStringList &cells)
{
    QStringList quoted;
    quoted.reserve(cells.size());
    for (const QString &cell : cells) {
        const bool needsQuotes = cell.contains(QLatin1Char(';')) || cell.contains(QLatin1Char('"')) ||
                                 cell.contains(QLatin1Char('\n')) || cell.contains(QLatin1Char('\r')) ||
                                 (!cell.isEmpty() && (cell.front().isSpace() || cell.back().isSpace()));
        if (!needsQuotes) {
            quoted << cell;
            continue;
        }
        QString inner = cell;
        inner.replace(QLatin1Char('"'), QLatin1String("\"\""));
        quoted << QLatin1Char('"') + inner + QLatin1Char('"');
    }
    return quoted.join(QLatin1Char(';'));
}

namespace {

// Writes the header and a line for each record `rows` hands over, through QSaveFile.
qint64 WriteCsv(const QString &path,
                const std::function<void(const std::function<void(const ArchivedRecord &)> &)> &rows)
{
    QSaveFile file(path);
    const auto failed = [&](const QString &reason) {
        return ArchiveError(QStringLiteral("CSV-Datei %1 nicht geschrieben: %2").arg(path, reason));
    };
    if (!file.open(QIODevice::WriteOnly))
        throw failed(file.errorString());
    qint64 count = 0;
    const auto line = [&file](const QString &text) { file.write((text + QLatin1String("\r\n")).toUtf8()); };
    file.write("\xEF\xBB\xBF"); // spreadsheets take the file for UTF-8 only with it
    line(CsvLine(CsvColumns()));
    rows([&](const ArchivedRecord &record) {
        line(CsvLine(CsvCells(record)));
        ++count;
    });
    if (!file.commit())
        throw failed(file.errorString());
    return count;
}

} // namespace

qint64 ExportArchiveCsv(Archive &archive, const ArchiveFilter &filter, const QString &path)
{
    return WriteCsv(path, [&](const std::function<void(const ArchivedRecord &)> &row) {
        ForEachRecord(archive, filter, row);
    });
}

qint64 WriteArchiveCsv(const QList<ArchivedRecord> &records, const QString &path)
{
    return WriteCsv(path, [&](const std::function<void(const ArchivedRecord &)> &row) {
        for (const ArchivedRecord &record : records)
            row(record);
    });
}

StoredRecord RecordOrError(Archive &archive, qint64 id)
{
    std::optional<StoredRecord> stored = FetchRecord(archive, id);
    if (!stored)
        throw ArchiveError(
            QStringLiteral("Archiv %1: kein Protokoll Nr. %2").arg(archive.target().Describe()).arg(id));
    return std::move(*stored);
}

QString ReportWithHash(const QByteArray &raw, const QByteArray &sha256)
{
    return records::BuildReport(records::DecodeRecord(raw)) + QStringLiteral("\r\nSHA-256: ") +
           QString::fromLatin1(sha256) + QStringLiteral("\r\n");
}

int ExportArchivePdf(Archive &archive, const QList<qint64> &ids, const QString &path)
{
    int count = 0;
    records::SaveReportPdf(path, QFileInfo(path).completeBaseName(), [&](records::ReportPages &pages) {
        for (const qint64 id : ids) {
            const StoredRecord stored = RecordOrError(archive, id);
            pages.Add(ReportWithHash(stored.raw, stored.record.sha256));
            ++count;
        }
    });
    return count;
}

} // namespace kalvo::archive
