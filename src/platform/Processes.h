// Processes: stopping another one for a while and letting it go on (the tests' database server that
// stops answering; Windows has no such signals: both say false there), and ending this one.
#pragma once

#include <QtGlobal>

namespace kalvo::platform {

bool PauseProcess(qint64 pid);
bool ResumeProcess(qint64 pid);

// What main returns once its own objects are gone: `code`. On Windows the process ends here
// instead, after the standard streams are flushed, without the runtime libraries' teardown: once a
// Qt thread has used the MinGW runtime's thread keys, deleting them while the DLLs unload waits
// forever, and a program whose window is closed would stay in the task list.
int EndProcess(int code);

} // namespace kalvo::platform
