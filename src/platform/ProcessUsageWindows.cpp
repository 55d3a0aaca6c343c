// Processor time on Windows: GetProcessTimes.
#include "ProcessUsage.h"

#include <windows.h>

namespace kalvo::platform {

namespace {

double Seconds(const FILETIME &time) // counted in 100 ns
{
    return static_cast<double>((static_cast<unsigned long long>(time.dwHighDateTime) << 32) |
                               time.dwLowDateTime) /
           1e7;
}

} // namespace

double CpuSeconds()
{
    FILETIME created{}, exited{}, kernel{}, user{};
    if (!::GetProcessTimes(::GetCurrentProcess(), &created, &exited, &kernel, &user))
        return 0;
    return Seconds(kernel) + Seconds(user);
}

} // namespace kalvo::platform
