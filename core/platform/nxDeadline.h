// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXDEADLINE_H
#define CORE_PLATFORM_NXDEADLINE_H

#include <ctime>

/// Converts the relative time-outs of the locks into the absolute wall-clock deadlines of POSIX waits.
class nxDeadline
{
public:
    /// The longest time-out, about 136 years: longer ones are cut to it, so that no sum overflows.
    static constexpr long long MaximumSeconds = 4'294'967'295;

    /// Splits @p seconds into whole seconds and nanoseconds, both truncated. Negative numbers and NaN give -1 seconds.
    static timespec Split(double seconds);
    /// Splits a count of microseconds.
    static timespec SplitMicroseconds(unsigned long long microseconds);

    /// @return the wall clock, cut to whole milliseconds, plus @p relative: up to a millisecond early. If the nanoseconds
    ///         add up to exactly 1,000,000,000 they are not carried, and the system refuses the deadline. A wait of whole
    ///         milliseconds that is not one of whole seconds meets this during one millisecond of every second.
    static timespec After(const timespec& relative);
};

#endif
