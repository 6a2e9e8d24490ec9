// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TESTING_NXSTEPPEDCLOCK_H
#define CORE_TESTING_NXSTEPPEDCLOCK_H

#include <algorithm>
#include <chrono>
#include <limits>

#include "core/platform/inline/nxClock.h"
#include "core/time/nxTimeStamp.h"

/// Stops the process's clock and moves it by hand, for the tests of applications.
///
/// While an object lives, every nxTimeStamp that any thread takes is the moment that the test has set, and every
/// nxElapsedTimeCounter advances only by the steps. The code under test needs no changes for this. Everything else is
/// unaffected: timed waits and the system's clock continue, and the log stamps its records with the true time.
///
/// - Units: steps as any std::chrono duration, rounded to the nanosecond and limited to 292 years. Moments from the year
///   1678 to 2261; others become the first or the last of them.
/// - Errors: none.
/// - Threads: any thread may take stamps meanwhile; one thread at a time steps.
/// - Ownership: one object at a time. When it is destroyed, the clock continues with the true time. Readings of an
///   elapsed-time counter that was started meanwhile have no meaning afterwards.
/// @code
/// nxSteppedClock clock(nxTimeStamp(1'709'629'623, 0));
/// Session session;                       // takes its time stamps as usual
/// clock.Step(std::chrono::seconds(31));
/// EXPECT_TRUE(session.IsIdle());
/// @endcode
class nxSteppedClock
{
public:
    /// Stops the clock at @p moment, by default at the present one.
    explicit nxSteppedClock(const nxTimeStamp& moment = nxTimeStamp::Now())
        : _wall(_ToNanoseconds(moment)), _monotonic(nxClock::MonotonicNanoseconds())
    {
        _Show();
    }
    /// Lets the clock run again.
    ~nxSteppedClock() { nxClock::_Run(); }

    nxSteppedClock(const nxSteppedClock&) = delete;
    nxSteppedClock& operator=(const nxSteppedClock&) = delete;

    /// Lets @p duration pass, for time stamps and elapsed-time counters alike. A negative one sets the time stamps
    /// back; counters never run backwards.
    void Step(std::chrono::nanoseconds duration)
    {
        _wall = _Sum(_wall, duration.count());
        _monotonic = _Sum(_monotonic, std::max<long long>(duration.count(), 0));
        _Show();
    }

    /// The same for every other duration, including fractions and units below the nanosecond. NaN is no step.
    template <class Rep, class Period>
    void Step(const std::chrono::duration<Rep, Period>& duration)
    {
        using Nanoseconds = std::chrono::nanoseconds;
        const double nanoseconds = std::chrono::duration<double, std::nano>(duration).count();
        constexpr double limit = 9.2e18;  // below 2^63, also after rounding
        if (nanoseconds >= limit)
            Step(Nanoseconds::max());
        else if (nanoseconds <= -limit)
            Step(Nanoseconds::min());
        else if (nanoseconds == nanoseconds)
            Step(std::chrono::round<Nanoseconds>(duration));
    }

    /// Sets the time stamps to @p moment, as a person sets a clock: no time passes for elapsed-time counters.
    void Set(const nxTimeStamp& moment)
    {
        _wall = _ToNanoseconds(moment);
        _Show();
    }

private:
    void _Show() const { nxClock::_StopAt(_wall, _monotonic); }

    static std::int64_t _Sum(std::int64_t left, std::int64_t right)
    {
        std::int64_t sum = 0;
        if (__builtin_add_overflow(left, right, &sum))
            return right < 0 ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
        return sum;
    }

    static std::int64_t _ToNanoseconds(const nxTimeStamp& moment)
    {
        using Moment = std::chrono::time_point<std::chrono::system_clock, std::chrono::nanoseconds>;
        return moment.GetAsTimePoint<Moment>().time_since_epoch().count();
    }

    std::int64_t _wall;       // nanoseconds since 1970
    std::int64_t _monotonic;  // nanoseconds since some moment
};

#endif
