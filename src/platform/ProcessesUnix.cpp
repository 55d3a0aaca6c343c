// Other processes on Unix: SIGSTOP and SIGCONT.
#include "Processes.h"

#include <signal.h>

namespace kalvo::platform {

bool PauseProcess(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), SIGSTOP) == 0;
}

bool ResumeProcess(qint64 pid)
{
    return ::kill(static_cast<pid_t>(pid), SIGCONT) == 0;
}

} // namespace kalvo::platform
