// The keys every secondary window answers as desktop programs do.
#include "WindowKeys.h"

#include <QShortcut>
#include <QWidget>

namespace kalvo::gui {

void CloseOnEscape(QWidget *window)
{
    auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), window);
    escape->setObjectName(QStringLiteral("closeOnEscape"));
    QObject::connect(escape, &QShortcut::activated, window, &QWidget::close);
}

} // namespace kalvo::gui
