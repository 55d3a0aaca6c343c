// Reports and tester print texts as paged documents: PDF files and printers.
#pragma once

#include <QFont>
#include <QString>
#include <QStringList>

class QPagedPaintDevice;

namespace kalvo::records {

// The fixed-pitch font reports are set in; it must hold the box-drawing characters of the
// tester's print texts.
QFont ReportFont();
// False when `font` lacks the line-drawing characters (the print text would show gaps).
bool HasLineDrawing(const QFont &font);

// Lays the reports out on `device`, each starting on a page of its own (tabs every 8 characters,
// as the report columns expect).
void PaintReport(const QStringList &reports, QPagedPaintDevice &device);
void PaintReport(const QString &text, QPagedPaintDevice &device);
// Writes the reports as an A4 PDF to `path`; the old file stays as it was when writing fails
// (FormatError naming the file).
void SaveReportPdf(const QStringList &reports, const QString &path, const QString &title);
void SaveReportPdf(const QString &text, const QString &path, const QString &title);

} // namespace kalvo::records
