// The text console of kalvo-cli: whether stderr is a terminal, umlauts that show right, and the
// fonts of a program without windows.
#pragma once

#include <QByteArray>

namespace kalvo::platform {

bool StderrIsTerminal();
// Makes the console take the program's output as UTF-8 (Windows consoles start with an OEM code
// page); nothing to do where terminals are UTF-8 already.
void UseUtf8Console();
// The Qt platform plugin for a program that draws (a PDF) but opens no window: "offscreen" on
// Unix, where there may be no display; empty on Windows, whose own plugin needs no display and
// finds the system's fonts (the offscreen one finds none there, and every glyph is a box).
QByteArray WindowlessPlatformPlugin();

} // namespace kalvo::platform
