// The real monotonic clock.
#include "Clock.h"

#include <thread>

namespace kalvo::link {

Duration SteadyClock::now() const
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

void SteadyClock::sleepFor(Duration d)
{
    if (d > Duration::zero())
        std::this_thread::sleep_for(d);
}

SteadyClock &SteadyClock::instance()
{
    static SteadyClock clock;
    return clock;
}

} // namespace kalvo::link
