// Text boxes that show reports: a fixed-pitch font and tab stops every few columns, set anew each time.
#pragma once

#include <QFont>
#include <QString>

class QPlainTextEdit;

namespace kalvo::gui {

// Shows `text` in `box` set in `font`, unwrapped, with a tab stop every `tabColumns` characters.
// Font and tab stops are set with every text: whatever the box showed before (a template in a
// font of its own) leaves nothing behind, and the columns of the report stay in line.
void ShowInReportBox(QPlainTextEdit *box, const QString &text, const QFont &font, int tabColumns);

} // namespace kalvo::gui
