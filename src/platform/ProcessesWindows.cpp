// Other processes on Windows: no stop and continue signals.
#include "Processes.h"

namespace kalvo::platform {

bool PauseProcess(qint64)
{
    return false;
}

bool ResumeProcess(qint64)
{
    return false;
}

} // namespace kalvo::platform
