// Windows open whole on the screen of the window they come from.
#include "WindowPlacement.h"

#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace kalvo::gui {

void FitOnScreen(QWidget *window, const QWidget *near)
{
    const QScreen *screen = (near ? near : window)->screen();
    if (!screen)
        return;
    const QRect area = screen->availableGeometry();
    // Room for the frame the window manager draws around it: as it is once the window is shown,
    // otherwise as the style tells it.
    QSize frame = window->frameGeometry().size() - window->size();
    if (frame.width() <= 0 || frame.height() <= 0) {
        const int border = 2 * window->style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
        frame = QSize(border, border + window->style()->pixelMetric(QStyle::PM_TitleBarHeight));
    }
    window->resize(window->size().boundedTo(area.size() - frame));
    // move() places the frame's top left corner.
    QPoint topLeft =
        near ? near->frameGeometry().topLeft() + QPoint(32, 32) : window->frameGeometry().topLeft();
    const int lastX = area.x() + area.width() - window->width() - frame.width();
    const int lastY = area.y() + area.height() - window->height() - frame.height();
    topLeft.setX(std::clamp(topLeft.x(), area.left(), std::max(area.left(), lastX)));
    topLeft.setY(std::clamp(topLeft.y(), area.top(), std::max(area.top(), lastY)));
    window->move(topLeft);
}

} // namespace kalvo::gui
