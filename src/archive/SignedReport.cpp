// The report a person signs and keeps.
#include "SignedReport.h"

#include "ArchiveExport.h"

#include "records/ReportBuilder.h"
#include "records/print/ReportDocument.h"

#include <QFileInfo>
#include <QFontMetricsF>
#include <QPainter>

namespace kalvo::archive {

namespace {

// The header band of every page: the company's name, up to four lines of address, the logo.
constexpr qreal kHeaderMm = 30;
constexpr int kAddressLines = 4;

QString Instrument(const ArchivedRecord &record)
{
    const QString name = record.source.tester.isEmpty() ? record.testerName : record.source.tester;
    QString text = name.isEmpty() ? QStringLiteral("unbekannt") : name;
    if (!record.source.testerSerial.isEmpty())
        text += QStringLiteral(", Seriennummer ") + record.source.testerSerial;
    return text;
}

void PaintHeader(QPainter &painter, const QRectF &band, const ReportSettings &settings, const QImage &logo)
{
    const qreal mm = painter.device()->logicalDpiY() / 25.4;
    const QRectF text = band.adjusted(0, 0, -(logo.isNull() ? 0 : 45 * mm), -4 * mm);
    if (!logo.isNull()) {
        // At most 45 x 24 mm at the right, its proportions kept.
        const QSizeF size = QSizeF(logo.size()).scaled(QSizeF(42, 24) * mm, Qt::KeepAspectRatio);
        painter.drawImage(QRectF(QPointF(band.right() - size.width(), band.top()), size), logo);
    }
    QFont name(QStringLiteral("DejaVu Sans"), 13, QFont::Bold);
    painter.setFont(name);
    QFontMetricsF metrics(name, painter.device());
    qreal y = band.top() + metrics.ascent();
    painter.drawText(QPointF(text.left(), y),
                     metrics.elidedText(settings.company, Qt::ElideRight, text.width()));
    y += metrics.descent() + 1.5 * mm;
    QFont address(QStringLiteral("DejaVu Sans"), 9);
    painter.setFont(address);
    metrics = QFontMetricsF(address, painter.device());
    const QStringList lines =
        settings.address.split(QLatin1Char('\n'), Qt::SkipEmptyParts).mid(0, kAddressLines);
    for (const QString &line : lines) {
        y += metrics.ascent();
        painter.drawText(QPointF(text.left(), y),
                         metrics.elidedText(line.trimmed(), Qt::ElideRight, text.width()));
        y += metrics.descent();
    }
    painter.setPen(QPen(Qt::black, 0.3 * mm));
    painter.drawLine(QPointF(band.left(), band.bottom() - 2 * mm),
                     QPointF(band.right(), band.bottom() - 2 * mm));
}

} // namespace

QString SignatureBlock(const ArchivedRecord &record, const QString &inspector)
{
    const QString next = record.nextTest.isValid() ? record.nextTest.toString(QStringLiteral("dd.MM.yyyy"))
                                                   : QStringLiteral("-");
    return QStringLiteral("\r\nPrüfgerät:        %1\r\n"
                          "Prüfer:           %2\r\n"
                          "Ergebnis:         %3\r\n"
                          "Nächste Prüfung:  %4\r\n"
                          "SHA-256: %5\r\n"
                          "\r\n\r\n"
                          "______________________________    ______________________________\r\n"
                          "Ort, Datum                        Unterschrift Prüfer\r\n")
        .arg(Instrument(record), inspector, record.verdict, next, QString::fromLatin1(record.sha256));
}

QStringList ExportSignedReportPdf(Archive &archive, const QList<qint64> &ids, const ReportSettings &settings,
                                  const QString &path)
{
    QStringList notes;
    QString problem;
    const QImage logo = LoadLogo(settings.logoFile, &problem);
    if (!problem.isEmpty())
        notes << problem + QStringLiteral("; der Bericht ist ohne Logo");
    records::SaveReportPdf(
        path, QFileInfo(path).completeBaseName(),
        [&](records::ReportPages &pages) {
            pages.SetPageHeader(kHeaderMm, [&](QPainter &painter, const QRectF &band) {
                PaintHeader(painter, band, settings, logo);
            });
            for (const qint64 id : ids) {
                const StoredRecord stored = RecordOrError(archive, id);
                pages.Add(records::BuildReport(records::DecodeRecord(stored.raw)) +
                          SignatureBlock(stored.record, settings.inspector));
            }
        },
        records::PdfKind::Archival);
    return notes;
}

} // namespace kalvo::archive
