// Reports the tester renders itself with one of its print templates ("prn!").
#pragma once

#include <QByteArray>
#include <QString>

namespace kalvo::link {
class Link;
}

namespace kalvo::records {

constexpr int kLowestTemplate = 0; // 0 is the "Universal" template
constexpr int kHighestTemplate = 4;

// The print text of a "prn!" answer: from behind the first ENQ to the first FF after it (the whole
// answer where they are missing); CR, LF and codes 20..31 (ESC excepted) kept as they are, 32..254 through
// the display conversion, everything else dropped.
QString ExtractPrintText(const QByteArray &answer);

// Sends `command` (without CR) and returns the print text of its answer.
QString ShowTesterPrintText(link::Link &link, const QByteArray &command);

// Record `record` of the store rendered with template `templateNumber`: "tas!ron", "prn!t,i",
// "rst!0". A template outside 0..4 sends nothing and returns an empty text.
QString RenderStoredRecord(link::Link &link, int templateNumber, int record);

// The current record rendered with template `templateNumber` ("prn!t"); nothing sent outside 0..4.
QString RenderCurrentRecord(link::Link &link, int templateNumber);

} // namespace kalvo::records
