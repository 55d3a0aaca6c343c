// A record printed with a print template: the template's field markers filled with the record's values.
#pragma once

#include <QByteArray>

namespace kalvo::sim {

class PrintRenderer {
public:
    static constexpr int kTemplates = 5;

    // The print text of `record` (stored form) through `templateText`. A marker "#NN" (field 01..74),
    // "#VS" (regulation), "#SK" (protection class), "#AT" (applied part) or "#ER" (verdict) gives way
    // to its value, which fills the marker's three columns and the blanks behind it; a value too
    // long for that room is cut so that one blank stays before what follows (at the end of a line
    // nothing is cut). A line whose markers all come out empty is left out, so that measurements
    // the record does not hold leave no empty rows. Everything else is copied as it stands.
    static QByteArray Render(const QByteArray &templateText, const QByteArray &record);
};

} // namespace kalvo::sim
