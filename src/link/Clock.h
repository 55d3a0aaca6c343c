// The one clock every wait and time-out of the link reads; tests swap in a manual one.
#pragma once

#include <algorithm>
#include <chrono>
#include <cmath>

namespace kalvo::link {

using Duration = std::chrono::nanoseconds;

class Clock {
public:
    virtual ~Clock() = default;
    // Monotonic time since an arbitrary origin.
    virtual Duration now() const = 0;
    // Sleep (never spin) for the given time.
    virtual void sleepFor(Duration d) = 0;
};

// The real monotonic clock.
class SteadyClock final : public Clock {
public:
    Duration now() const override;
    void sleepFor(Duration d) override;
    static SteadyClock &instance();
};

// A clock that only moves when told to, or when somebody sleeps on it.
class ManualClock final : public Clock {
public:
    Duration now() const override { return m_now; }
    void sleepFor(Duration d) override
    {
        if (d > Duration::zero())
            m_now += d;
    }
    void advance(Duration d) { sleepFor(d); }

private:
    Duration m_now{};
};

inline double ToSeconds(Duration d)
{
    return std::chrono::duration<double>(d).count();
}
// Seconds from a user (a time-out of "1e300" or "inf") can lie beyond the clock: a wait of more than
// about 30 years is as good as endless and is cut there, so that a deadline (now + wait) stays on the
// clock; a time that is no number waits not at all.
inline Duration FromSeconds(double s)
{
    constexpr double kLongestSeconds = 1e9;
    if (std::isnan(s))
        return Duration::zero();
    return std::chrono::duration_cast<Duration>(
        std::chrono::duration<double>(std::clamp(s, -kLongestSeconds, kLongestSeconds)));
}

} // namespace kalvo::link
