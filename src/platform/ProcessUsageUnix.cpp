// Processor time on Unix: getrusage.
#include "ProcessUsage.h"

#include <sys/resource.h>

namespace kalvo::platform {

double CpuSeconds()
{
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    return static_cast<double>(usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) +
           static_cast<double>(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e6;
}

} // namespace kalvo::platform
