// The port the user last confirmed, kept in the user's settings between runs.
#pragma once

#include "Settings.h"

namespace kalvo::shell {

// What the port chooser preselects: the settings file's port when there is a "Q417.ini", else
// the port last confirmed, else the default.
QString StartPort(const Settings &settings);
void RememberPort(const QString &port);

} // namespace kalvo::shell
