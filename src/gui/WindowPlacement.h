// Windows open whole on the screen of the window they come from.
#pragma once

class QWidget;

namespace kalvo::gui {

// Shrinks `window` to the available area of the screen of `near` (or its own) when it is larger,
// and moves it so that all of it, title bar included, lies on that screen.
void FitOnScreen(QWidget *window, const QWidget *near = nullptr);

} // namespace kalvo::gui
