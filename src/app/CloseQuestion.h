// The question before the main window closes while the tester is being updated.
#pragma once

#include <QString>

class QWidget;

namespace kalvo::app {

// True when the user closes anyway; "keep running" is the default and Escape's answer.
bool CloseDuringTransfer(QWidget *owner, const QString &title, const QString &language);

} // namespace kalvo::app
