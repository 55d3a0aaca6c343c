// The one clock every wait and time-out of the link reads; tests swap in a manual one.
#pragma once

#include <chrono>

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
inline Duration FromSeconds(double s)
{
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(s));
}

} // namespace kalvo::link
