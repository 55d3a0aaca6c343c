// Processes on Unix: SIGSTOP and SIGCONT; ending is main's ordinary return.
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

int EndProcess(int code)
{
    return code;
}

} // namespace kalvo::platform
