// Reports and tester print texts as paged documents: PDF files and printers.
#include "ReportDocument.h"

#include "link/Errors.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QPageLayout>
#include <QPdfWriter>
#include <QSaveFile>
#include <QTextBlockFormat>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextOption>

namespace kalvo::records {

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

void PaintReport(const QStringList &reports, QPagedPaintDevice &device)
{
    QTextDocument document;
    const QFont font = ReportFont();
    document.setDefaultFont(font);
    QTextOption option = document.defaultTextOption();
    option.setTabStopDistance(QFontMetricsF(font).horizontalAdvance(QLatin1Char(' ')) * 8);
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    document.setDefaultTextOption(option);
    QTextCursor cursor(&document);
    QTextBlockFormat pageBreak;
    pageBreak.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
    const QTextBlockFormat normal;
    bool first = true;
    for (const QString &report : reports) {
        QString plain = report;
        plain.replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
            .replace(QLatin1Char('\r'), QLatin1Char('\n'));
        const QStringList lines = plain.split(QLatin1Char('\n'));
        for (qsizetype i = 0; i < lines.size(); ++i) {
            // Only a report's first line starts a new page; every other line is a plain block.
            if (!first)
                cursor.insertBlock(i == 0 ? pageBreak : normal);
            first = false;
            cursor.insertText(lines[i]);
        }
    }
    document.print(&device);
}

void PaintReport(const QString &text, QPagedPaintDevice &device)
{
    PaintReport(QStringList{text}, device);
}

void SaveReportPdf(const QString &text, const QString &path, const QString &title)
{
    SaveReportPdf(QStringList{text}, path, title);
}

void SaveReportPdf(const QStringList &reports, const QString &path, const QString &title)
{
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        throw link::FormatError(path, 0,
                                QStringLiteral("eine schreibbare Datei (%1)").arg(file.errorString()));
    {
        QPdfWriter writer(&file);
        writer.setTitle(title);
        writer.setCreator(QStringLiteral("kalvo"));
        writer.setPageLayout(QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait,
                                         QMarginsF(15, 15, 15, 15), QPageLayout::Millimeter));
        PaintReport(reports, writer);
    }
    if (!file.commit())
        throw link::FormatError(path, 0,
                                QStringLiteral("eine schreibbare Datei (%1)").arg(file.errorString()));
}

} // namespace kalvo::records
