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
    // Room for the frame the window manager draws around it.
    const int titleBar = window->style()->pixelMetric(QStyle::PM_TitleBarHeight);
    const int frame = 2 * window->style()->pixelMetric(QStyle::PM_DefaultFrameWidth);
    const QSize room(area.width() - frame, area.height() - titleBar - frame);
    window->resize(window->size().boundedTo(room));
    QPoint topLeft = near ? near->frameGeometry().topLeft() + QPoint(32, 32) : window->pos();
    topLeft.setX(
        std::clamp(topLeft.x(), area.left(), std::max(area.left(), area.right() - window->width() - frame)));
    topLeft.setY(std::clamp(topLeft.y(), area.top(),
                            std::max(area.top(), area.bottom() - window->height() - titleBar - frame)));
    window->move(topLeft);
}

} // namespace kalvo::gui
