// Reports and tester print texts as paged documents: PDF files and printers.
#include "ReportDocument.h"

#include "link/Errors.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPdfWriter>
#include <QSaveFile>

namespace kalvo::records {

namespace {

// `line` with its tabs turned into blanks up to the next multiple of 8 columns.
QString ExpandTabs(const QString &line)
{
    if (!line.contains(QLatin1Char('\t')))
        return line;
    QString out;
    out.reserve(line.size() + kReportTabColumns);
    for (const QChar ch : line) {
        if (ch == QLatin1Char('\t'))
            out += QString(kReportTabColumns - out.size() % kReportTabColumns, QLatin1Char(' '));
        else
            out += ch;
    }
    return out;
}

} // namespace

QFont ReportFont()
{
    // Courier is what the reports were laid out for; any fixed-pitch font with line drawing will do.
    for (const QString &family : {QStringLiteral("DejaVu Sans Mono"), QStringLiteral("Courier New"),
                                  QStringLiteral("Liberation Mono")}) {
        if (QFontDatabase::families().contains(family))
            return QFont(family, 10);
    }
    QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    font.setPointSize(10);
    return font;
}

bool HasLineDrawing(const QFont &font)
{
    const QFontMetricsF metrics(font);
    for (const char16_t box : {u'─', u'│', u'┌', u'┐', u'└', u'┘'})
        if (!metrics.inFont(QChar(box)))
            return false;
    return true;
}

ReportPages::ReportPages(QPagedPaintDevice &device) : m_device(device)
{
    // The printer's own margins (a few millimetres) would put a printed report elsewhere than its PDF.
    device.setPageMargins(kReportMarginsMm, QPageLayout::Millimeter);
    if (!m_painter.begin(&device))
        return;
    const QFont font = ReportFont();
    m_painter.setFont(font);
    // Measured on the device: a PDF writer counts in its own dots, not in screen pixels.
    const QFontMetricsF metrics(font, &device);
    m_lineHeight = metrics.lineSpacing();
    m_ascent = metrics.ascent();
    const QRectF page = m_painter.viewport();
    m_columns = std::max(1, static_cast<int>(page.width() / metrics.horizontalAdvance(QLatin1Char('M'))));
    m_linesPerPage = std::max(1, static_cast<int>(page.height() / m_lineHeight));
}

void ReportPages::SetPageHeader(qreal heightMm, std::function<void(QPainter &, const QRectF &)> paint)
{
    if (!m_painter.isActive())
        return;
    m_header = std::move(paint);
    m_top = heightMm * m_device.logicalDpiY() / 25.4;
    const QRectF page = m_painter.viewport();
    m_linesPerPage = std::max(1, static_cast<int>((page.height() - m_top) / m_lineHeight));
}

void ReportPages::PaintHeader()
{
    if (!m_header)
        return;
    m_painter.save();
    m_header(m_painter, QRectF(0, 0, m_painter.viewport().width(), m_top));
    m_painter.restore();
}

void ReportPages::NextPage()
{
    m_device.newPage();
    m_line = 0;
    PaintHeader();
}

void ReportPages::Line(const QString &text)
{
    if (m_line == m_linesPerPage)
        NextPage();
    if (!text.isEmpty())
        m_painter.drawText(QPointF(0, m_top + m_line * m_lineHeight + m_ascent), text);
    ++m_line;
}

void ReportPages::Add(const QString &report)
{
    if (!m_painter.isActive())
        return;
    if (!m_empty)
        NextPage();
    else
        PaintHeader();
    m_empty = false;
    qsizetype start = 0;
    while (start <= report.size()) {
        qsizetype end = report.indexOf(QLatin1Char('\n'), start);
        if (end < 0)
            end = report.size();
        QString line = report.mid(start, end - start);
        if (line.endsWith(QLatin1Char('\r')))
            line.chop(1);
        line = ExpandTabs(line);
        // A fixed-pitch font: the page holds the same number of characters on every line.
        for (qsizetype from = 0; from == 0 || from < line.size(); from += m_columns)
            Line(line.mid(from, m_columns));
        start = end + 1;
    }
}

bool ReportPages::Finish()
{
    return m_painter.isActive() && m_painter.end();
}

void PaintReport(const QStringList &reports, QPagedPaintDevice &device)
{
    ReportPages pages(device);
    for (const QString &report : reports)
        pages.Add(report);
    pages.Finish();
}

void PaintReport(const QString &text, QPagedPaintDevice &device)
{
    PaintReport(QStringList{text}, device);
}

void SavePdf(const QString &path, const QString &title, const QPageLayout &layout, PdfKind kind,
             const std::function<bool(QPdfWriter &)> &paint)
{
    QSaveFile file(path);
    const auto unwritable = [&file, &path] {
        return link::FormatError(path, 0,
                                 QStringLiteral("eine schreibbare Datei (%1)").arg(file.errorString()));
    };
    if (!file.open(QIODevice::WriteOnly))
        throw unwritable();
    bool painted = false;
    {
        QPdfWriter writer(&file);
        writer.setTitle(title);
        writer.setCreator(QStringLiteral("kalvo"));
        if (kind == PdfKind::Archival)
            writer.setPdfVersion(QPagedPaintDevice::PdfVersion_A1b);
        writer.setPageLayout(layout);
        painted = paint(writer);
    }
    if (!painted || !file.commit())
        throw unwritable();
}

void SaveReportPdf(const QString &path, const QString &title, const std::function<void(ReportPages &)> &fill,
                   PdfKind kind)
{
    const QPageLayout a4(QPageSize(QPageSize::A4), QPageLayout::Portrait, kReportMarginsMm,
                         QPageLayout::Millimeter);
    SavePdf(path, title, a4, kind, [&fill](QPdfWriter &writer) {
        ReportPages pages(writer);
        fill(pages);
        return pages.Finish();
    });
}

void SaveReportPdf(const QStringList &reports, const QString &path, const QString &title)
{
    SaveReportPdf(path, title, [&reports](ReportPages &pages) {
        for (const QString &report : reports)
            pages.Add(report);
    });
}

void SaveReportPdf(const QString &text, const QString &path, const QString &title)
{
    SaveReportPdf(QStringList{text}, path, title);
}

} // namespace kalvo::records
