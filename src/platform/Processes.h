// Other processes: stopping one for a while and letting it go on (the tests' database server that
// stops answering). Windows has no such signals: both say false there.
#pragma once

#include <QtGlobal>

namespace kalvo::platform {

bool PauseProcess(qint64 pid);
bool ResumeProcess(qint64 pid);

} // namespace kalvo::platform
