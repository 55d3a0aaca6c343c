// The keys every secondary window answers as desktop programs do.
#pragma once

class QWidget;

namespace kalvo::gui {

// Escape closes `window`, as its close button does. Only for windows opened from the main window:
// the main window itself is left with its exit entry.
void CloseOnEscape(QWidget *window);

} // namespace kalvo::gui
