#ifndef CORE_PLATFORM_NXDEADLINE_H
#define CORE_PLATFORM_NXDEADLINE_H

#include <ctime>

/// Turns the relative time-outs of the locks into the absolute wall-clock deadlines that POSIX waits take.
class nxDeadline
{
public:
    /// The longest time-out, about 136 years: longer ones are cut to it, so that no sum overflows.
    static constexpr long long MaximumSeconds = 4'294'967'295;

    /// Splits @p seconds into its floor and nanoseconds, both truncated. Negative numbers and NaN give a second ago.
    static timespec Split(double seconds);
    /// Splits a count of microseconds.
    static timespec SplitMicroseconds(unsigned long long microseconds);

    /// @return the wall clock, cut to whole milliseconds, plus @p relative: up to a millisecond early. A sum of exactly
    ///         1,000,000,000 nanoseconds is left as it stands, and the system refuses such a deadline: for a wait of
    ///         whole milliseconds but not of whole seconds this is so during one millisecond of every second.
    static timespec After(const timespec& relative);
};

#endif
