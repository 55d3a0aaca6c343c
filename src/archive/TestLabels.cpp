// Test labels for devices as a PDF on label sheets or a label roll.
#include "TestLabels.h"

#include "QrCode.h"
#include "records/print/ReportDocument.h"

#include "link/Errors.h"

#include <QFont>
#include <QFontMetricsF>
#include <QPainter>
#include <QPdfWriter>

#include <algorithm>

namespace kalvo::archive {

namespace {

constexpr qreal kPaddingMm = 2.5;

QString GermanDay(const QDate &date)
{
    return date.isValid() ? date.toString(QStringLiteral("dd.MM.yyyy")) : QStringLiteral("-");
}

QFont LabelFont(qreal points, bool bold)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(points);
    font.setBold(bold);
    return font;
}

// Paints one label into `box` (device units; `mm` of them make a millimetre).
class LabelPainter {
public:
    LabelPainter(QPainter &painter, qreal mm) : m_painter(painter), m_mm(mm) {}

    void Paint(const LabelDevice &device, const QRectF &box)
    {
        const qreal pad = kPaddingMm * m_mm;
        const QRectF inner = box.adjusted(pad, pad, -pad, -pad);
        // The code on the left, as high as the label where that leaves the text room enough.
        const qreal side = std::min(inner.height(), inner.width() * 0.45);
        const QRectF code(inner.left(), inner.center().y() - side / 2, side, side);
        PaintQr(m_painter, EncodeQr(LabelText(device).toUtf8()), code);
        m_text = inner.adjusted(code.width() + pad / 2, 0, 0, 0);
        m_y = m_text.top();

        // The verdict as a bar: black on white when passed, white on black when not, so that a
        // failed device stands out even on a black-and-white printer.
        const QFont verdictFont = LabelFont(9, true);
        const qreal bar = QFontMetricsF(verdictFont, m_painter.device()).height() * 1.15;
        const QRectF verdictBox(m_text.left(), m_y, m_text.width(), bar);
        m_painter.setPen(QPen(Qt::black, 0.3 * m_mm));
        m_painter.setBrush(device.failed ? Qt::black : Qt::white);
        m_painter.drawRect(verdictBox);
        m_painter.setFont(verdictFont);
        m_painter.setPen(device.failed ? Qt::white : Qt::black);
        m_painter.drawText(verdictBox, Qt::AlignCenter,
                           device.failed ? QStringLiteral("nicht bestanden") : QStringLiteral("bestanden"));
        m_painter.setPen(Qt::black);
        m_y += bar + 0.8 * m_mm;

        Line(QStringLiteral("Nächste Prüfung"), LabelFont(6, false));
        Line(GermanDay(device.nextTest), LabelFont(12, true));
        Line(QStringLiteral("Geprüft: ") + GermanDay(device.lastTest.date()), LabelFont(6.5, false));
        Line(QStringLiteral("ID-Nr: ") + device.deviceId, LabelFont(6.5, true));
        Line(QStringLiteral("Kunde: ") + device.customer, LabelFont(6.5, false));
    }

private:
    // A line of text under the last, cut with "..." where it is wider than the label.
    void Line(const QString &text, const QFont &font)
    {
        const QFontMetricsF metrics(font, m_painter.device());
        if (m_y + metrics.height() > m_text.bottom() + metrics.descent())
            return;
        m_painter.setFont(font);
        m_painter.drawText(QPointF(m_text.left(), m_y + metrics.ascent()),
                           metrics.elidedText(text, Qt::ElideRight, m_text.width()));
        m_y += metrics.height();
    }

    QPainter &m_painter;
    qreal m_mm;
    QRectF m_text;
    qreal m_y = 0;
};

} // namespace

QList<LabelSheet> LabelSheets()
{
    return {{QStringLiteral("a4-3x8"), {70, 37}, {210, 297}, 3, 8, {0, 0.5}},
            {QStringLiteral("roll-62"), {62, 40}, {62, 40}, 1, 1, {0, 0}}};
}

std::optional<LabelSheet> LabelSheetNamed(const QString &name)
{
    for (const LabelSheet &sheet : LabelSheets())
        if (sheet.name == name)
            return sheet;
    return std::nullopt;
}

QString LabelText(const LabelDevice &device)
{
    return LabelCodeText({device.customer, device.deviceId, device.nextTest});
}

void WriteLabelsPdf(const QList<LabelDevice> &devices, const LabelSheet &sheet, int firstFree,
                    const QString &path)
{
    const QPageLayout layout(QPageSize(sheet.pageMm, QPageSize::Millimeter, QString(), QPageSize::ExactMatch),
                             QPageLayout::Portrait, QMarginsF(), QPageLayout::Millimeter);
    records::SavePdf(
        path, QStringLiteral("Prüfetiketten"), layout, records::PdfKind::Plain, [&](QPdfWriter &writer) {
            QPainter painter;
            if (!painter.begin(&writer))
                return false;
            const qreal mm = writer.logicalDpiX() / 25.4;
            LabelPainter label(painter, mm);
            int slot = std::clamp(firstFree, 1, sheet.perPage()) - 1;
            for (const LabelDevice &device : devices) {
                if (slot == sheet.perPage()) {
                    writer.newPage();
                    slot = 0;
                }
                const QPointF corner(sheet.firstMm.width() + slot % sheet.columns * sheet.labelMm.width(),
                                     sheet.firstMm.height() + slot / sheet.columns * sheet.labelMm.height());
                label.Paint(device, QRectF(corner * mm, sheet.labelMm * mm));
                ++slot;
            }
            return painter.end();
        });
}

} // namespace kalvo::archive
