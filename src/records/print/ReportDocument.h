// Reports and tester print texts as paged documents: PDF files and printers.
#pragma once

#include <QFont>
#include <QMarginsF>
#include <QPageLayout>
#include <QPainter>
#include <QString>
#include <QStringList>
#include <functional>

class QPagedPaintDevice;
class QPdfWriter;

namespace kalvo::records {

// The fixed-pitch font reports are set in; it must hold the box-drawing characters of the
// tester's print texts.
QFont ReportFont();
// False when `font` lacks the line-drawing characters (the print text would show gaps).
bool HasLineDrawing(const QFont &font);
// Reports have a tab stop every 8 columns, on screen and on paper.
constexpr int kReportTabColumns = 8;
// The margins of a report page in millimetres, printed or saved as PDF alike.
inline constexpr QMarginsF kReportMarginsMm{15, 15, 15, 15};

// Lays reports out on a paged device one after the other, each starting on a page of its own:
// inside the report margins, line by line in the report font, tabs every 8 columns, a line wider
// than the page carried on in the next. A report is painted as it is added and not kept, so time and memory
// grow with the text and no faster.
class ReportPages {
public:
    explicit ReportPages(QPagedPaintDevice &device);
    ReportPages(const ReportPages &) = delete;
    ReportPages &operator=(const ReportPages &) = delete;

    // Paints `paint` at the top of every page, in a band `heightMm` high that the reports'
    // lines keep clear of. Set before the first report is added.
    void SetPageHeader(qreal heightMm, std::function<void(QPainter &, const QRectF &)> paint);
    void Add(const QString &report);
    // Ends the document; false when the device could not be painted on.
    bool Finish();

private:
    void Line(const QString &text);
    void NextPage();
    void PaintHeader();

    QPagedPaintDevice &m_device;
    std::function<void(QPainter &, const QRectF &)> m_header;
    qreal m_top = 0;
    QPainter m_painter;
    qreal m_lineHeight = 0;
    qreal m_ascent = 0;
    int m_columns = 1;
    int m_linesPerPage = 1;
    int m_line = 0;
    bool m_empty = true;
};

void PaintReport(const QStringList &reports, QPagedPaintDevice &device);
void PaintReport(const QString &text, QPagedPaintDevice &device);
// How a PDF is written: plain, or PDF/A-1b for keeping (fonts embedded, no transparency).
enum class PdfKind { Plain, Archival };
// Writes a PDF to `path` through QSaveFile with the pages `paint` makes on the writer it is given
// (`paint` returns false when it could not paint); the old file stays as it was when writing fails
// (FormatError naming the file) or `paint` throws.
void SavePdf(const QString &path, const QString &title, const QPageLayout &layout, PdfKind kind,
             const std::function<bool(QPdfWriter &)> &paint);
// Writes an A4 PDF to `path` with the reports that `fill` adds; the old file stays as it was when
// writing fails (FormatError naming the file) or `fill` throws.
void SaveReportPdf(const QString &path, const QString &title, const std::function<void(ReportPages &)> &fill,
                   PdfKind kind = PdfKind::Plain);
void SaveReportPdf(const QStringList &reports, const QString &path, const QString &title);
void SaveReportPdf(const QString &text, const QString &path, const QString &title);

} // namespace kalvo::records
