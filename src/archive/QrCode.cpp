// QR codes as squares to paint: crisp at any size on paper and in PDF.
#include "QrCode.h"

#include "link/Errors.h"

#include <QPainter>

#include <algorithm>
#include <memory>
#include <qrencode.h>

namespace kalvo::archive {

namespace {

// The ECI that marks 8-bit data as UTF-8; without it readers guess (often Shift JIS).
constexpr unsigned int kUtf8Eci = 26;

bool IsAscii(const QByteArray &bytes)
{
    return std::all_of(bytes.cbegin(), bytes.cend(),
                       [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

} // namespace

QrMatrix EncodeQr(const QByteArray &bytes)
{
    const std::unique_ptr<QRinput, decltype(&QRinput_free)> input(QRinput_new2(0, QR_ECLEVEL_M),
                                                                  &QRinput_free);
    // Plain ASCII needs no ECI, and some older readers show it as text.
    const bool built = input && (IsAscii(bytes) || QRinput_appendECIheader(input.get(), kUtf8Eci) == 0) &&
                       QRinput_append(input.get(), QR_MODE_8, static_cast<int>(bytes.size()),
                                      reinterpret_cast<const unsigned char *>(bytes.constData())) == 0;
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> code(
        built ? QRcode_encodeInput(input.get()) : nullptr, &QRcode_free);
    if (!code)
        throw link::FormatError(
            QStringLiteral("QR-Code"), 0,
            QStringLiteral("einen Text, der in einen QR-Code passt (%1 Bytes)").arg(bytes.size()));
    QrMatrix matrix;
    matrix.width = code->width;
    matrix.dark.resize(static_cast<size_t>(code->width) * code->width);
    for (size_t i = 0; i < matrix.dark.size(); ++i)
        matrix.dark[i] = (code->data[i] & 1) != 0; // the lowest bit is the module's colour
    return matrix;
}

void PaintQr(QPainter &painter, const QrMatrix &code, const QRectF &box)
{
    const qreal module = box.width() / (code.width + 2 * kQrQuietModules);
    const QPointF origin = box.topLeft() + QPointF(module, module) * kQrQuietModules;
    painter.save();
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::black);
    // A run of dark modules in a row is one rectangle: fewer shapes, a smaller and faster PDF.
    for (int y = 0; y < code.width; ++y) {
        for (int x = 0; x < code.width;) {
            if (!code.at(x, y)) {
                ++x;
                continue;
            }
            const int start = x;
            while (x < code.width && code.at(x, y))
                ++x;
            painter.drawRect(
                QRectF(origin.x() + start * module, origin.y() + y * module, (x - start) * module, module));
        }
    }
    painter.restore();
}

} // namespace kalvo::archive
