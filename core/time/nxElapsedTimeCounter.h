// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXELAPSEDTIMECOUNTER_H
#define CORE_TIME_NXELAPSEDTIMECOUNTER_H

#include "core/nxExport.h"

/// Measures intervals: each object from its construction or last Reset(), and once for the whole process.
///
/// - Units: seconds as a double, never negative; steps of the wall clock have no effect.
/// - Threads: the process-wide start may be read and reset by any thread; an object is like an int.
/// @code
/// nxElapsedTimeCounter counter;
/// Work();
/// const double seconds = counter.GetElapsedTimeInSeconds();
/// @endcode
class NX_CORE_API nxElapsedTimeCounter
{
public:
    nxElapsedTimeCounter();                                                  ///< Starts now.
    nxElapsedTimeCounter(const nxElapsedTimeCounter&) = default;             ///< Keeps the other's start.
    nxElapsedTimeCounter& operator=(const nxElapsedTimeCounter&) = default;  ///< Takes the other's start.
    virtual ~nxElapsedTimeCounter();

    void Reset();                            ///< Starts again, now.
    double GetElapsedTimeInSeconds() const;  ///< Seconds since construction or the last Reset().

    static void ResetGlobalTime();                  ///< Starts the process-wide measurement again, now.
    static double GetGlobalElapsedTimeInSeconds();  ///< Seconds since the last ResetGlobalTime(), else since load.

private:
    long long _start;  // reading of the performance counter
};

#endif
