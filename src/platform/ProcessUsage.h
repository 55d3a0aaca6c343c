// What the running process has used, for the benchmarks' figures.
#pragma once

namespace kalvo::platform {

// Processor time of this process so far, user and system together, in seconds.
double CpuSeconds();

} // namespace kalvo::platform
