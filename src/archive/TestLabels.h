// Test labels for devices: verdict, test dates, ID-Nr, customer and a QR code, as a PDF on label
// sheets or a label roll.
#pragma once

#include "LabelDevices.h"

#include <QList>
#include <QSizeF>
#include <QString>
#include <optional>

namespace kalvo::archive {

// The label stock: its name for the command line, the label's size, and how labels sit on a page.
struct LabelSheet {
    QString name;   // "a4-3x8", "roll-62"
    QSizeF labelMm; // one label
    QSizeF pageMm;  // the page (a roll: one label a page)
    int columns = 1;
    int rows = 1;
    QSizeF firstMm; // the top left corner of the first label
    int perPage() const { return columns * rows; }
};

// A4 with 3 x 8 labels of 70 x 37 mm, and a roll 62 mm wide with labels 40 mm long.
QList<LabelSheet> LabelSheets();
// The sheet called `name`; nullopt when there is none.
std::optional<LabelSheet> LabelSheetNamed(const QString &name);

// Writes a label for each of `devices` to the PDF `path`, the first on label `firstFree` (1 is
// top left, along the rows) of a sheet already started. Needs a QGuiApplication for the fonts.
// The old file stays when anything fails (link::FormatError naming the file).
void WriteLabelsPdf(const QList<LabelDevice> &devices, const LabelSheet &sheet, int firstFree,
                    const QString &path);

// The text of the QR code on `device`'s label.
QString LabelText(const LabelDevice &device);

} // namespace kalvo::archive
