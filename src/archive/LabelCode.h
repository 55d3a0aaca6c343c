// The text of a test label's QR code: which device it is and when it is due, so that a scanner in
// the workshop can look the device up.
#pragma once

#include <QDate>
#include <QString>

namespace kalvo::archive {

// "KALVO1;<customer>;<ID-Nr>;<next test yyyy-MM-dd>": the device's key and its next test. A ';' or
// '\' inside a field is written "\;" or "\\"; every other character stands as it is (UTF-8 in the
// code). The next test is empty when the device has none. "KALVO1" names this layout: a later one
// gets a new number and the old labels stay readable.
struct LabelCode {
    QString customer; // may be empty
    QString deviceId;
    QDate nextTest; // invalid: none
};

QString LabelCodeText(const LabelCode &code);
// The fields of a label's text; a text that is not one throws link::FormatError saying what is
// wrong with it.
LabelCode ParseLabelCode(const QString &text);

} // namespace kalvo::archive
