// QR codes as squares to paint: crisp at any size on paper and in PDF.
#pragma once

#include <QByteArray>
#include <QRectF>
#include <vector>

class QPainter;

namespace kalvo::archive {

// The modules of a QR code, error correction level M; row by row, true is dark. No quiet zone.
struct QrMatrix {
    int width = 0;
    std::vector<bool> dark;
    bool at(int x, int y) const { return dark[static_cast<size_t>(y) * width + x]; }
};

// The code of `bytes` in 8-bit mode (UTF-8 text goes as it is). Throws link::FormatError when the
// text is too long for any QR code.
QrMatrix EncodeQr(const QByteArray &bytes);

// The light margin around a code that readers need: four modules on every side.
constexpr int kQrQuietModules = 4;
// Paints `code` as black rectangles into the square `box` (its quiet zone included, left white).
void PaintQr(QPainter &painter, const QrMatrix &code, const QRectF &box);

} // namespace kalvo::archive
