// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INLINE_NXWAITTIME_H
#define CORE_THREAD_INLINE_NXWAITTIME_H

#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

/// The length of a timed wait: a std::chrono::duration of any number and unit.
///
/// The headers of the locks do not include <chrono>, which is larger than the largest of them.
template <class T>
concept nxWaitDuration = std::is_arithmetic_v<typename T::rep> && requires(const T& time)
{
    time.count() * T::period::num / T::period::den;
};

/// The end of a timed wait: a std::chrono::time_point of a clock that cannot be set, such as std::chrono::steady_clock.
template <class T>
concept nxWaitMoment = nxWaitDuration<typename T::duration> && T::clock::is_steady;

/// Converts the times of timed waits to nanoseconds, rounded up, so that no wait ends early.
class nxWaitTime
{
public:
    nxWaitTime() = delete;

    /// @return 0 for negative values and NaN; 2^63 - 1, which is 292 years, for longer times.
    template <nxWaitDuration Duration>
    static constexpr std::int64_t Nanoseconds(const Duration& time)
    {
        using Number = typename Duration::rep;
        using Unit = typename Duration::period;
        constexpr std::int64_t longest = std::numeric_limits<std::int64_t>::max();
        constexpr std::int64_t perSecond = 1'000'000'000;
        const Number count = time.count();
        if (!(count > 0))
            return 0;
        if constexpr (std::is_floating_point_v<Number>)
        {
            constexpr double tooLong = 9'223'372'036'854'775'808.0;
            constexpr double perUnit = perSecond * static_cast<double>(Unit::num) / static_cast<double>(Unit::den);
            const double nanoseconds = std::ceil(static_cast<double>(count) * perUnit);
            return nanoseconds < tooLong ? static_cast<std::int64_t>(nanoseconds) : longest;
        }
        else
        {
            __extension__ using Wide = unsigned __int128;
            // A unit's numerator times 10^9 may need more than 64 bits; no clock's unit does.
            constexpr Wide perUnit = Wide{Unit::num} * Wide{perSecond};
            static_assert(perUnit <= Wide{longest}, "a unit of more than 292 years");
            const Wide nanoseconds = (static_cast<Wide>(count) * perUnit + (Unit::den - 1)) / Unit::den;
            return nanoseconds < Wide{longest} ? static_cast<std::int64_t>(nanoseconds) : longest;
        }
    }

    /// @return how long it is until @p moment; 0 when it has passed.
    template <nxWaitMoment Moment>
    static std::int64_t NanosecondsUntil(const Moment& moment)
    {
        // Both are 0 or above, so that their difference fits.
        const std::int64_t end = Nanoseconds(moment.time_since_epoch());
        const std::int64_t now = Nanoseconds(Moment::clock::now().time_since_epoch());
        return end > now ? end - now : 0;
    }
};

#endif
