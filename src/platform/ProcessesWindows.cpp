// Processes on Windows: no stop and continue signals; ending without the DLLs' teardown.
#include "Processes.h"

#include <cstdio>
#include <windows.h>

namespace kalvo::platform {

bool PauseProcess(qint64)
{
    return false;
}

bool ResumeProcess(qint64)
{
    return false;
}

int EndProcess(int code)
{
    std::fflush(nullptr);
    ::TerminateProcess(::GetCurrentProcess(), static_cast<UINT>(code));
    return code; // not reached: the process ends with the call
}

} // namespace kalvo::platform
