// Text boxes that show reports: a fixed-pitch font and tab stops every few columns, set anew each time.
#include "ReportBox.h"

#include <QFontMetricsF>
#include <QPlainTextEdit>

namespace kalvo::gui {

void ShowInReportBox(QPlainTextEdit *box, const QString &text, const QFont &font, int tabColumns)
{
    box->setFont(font);
    box->setLineWrapMode(QPlainTextEdit::NoWrap);
    box->setTabStopDistance(QFontMetricsF(font).horizontalAdvance(QLatin1Char(' ')) * tabColumns);
    box->setPlainText(text);
}

} // namespace kalvo::gui
