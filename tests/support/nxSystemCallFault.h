// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXSYSTEMCALLFAULT_H
#define TESTS_SUPPORT_NXSYSTEMCALLFAULT_H

/// Makes a function of the C library fail, for as long as the object lives.
///
/// A test program that mentions this class contains functions of the same names as the C library's (listed in
/// nxSystemCalls.inc). The loader binds all code to them, the library under test included; they ask whether a fault is
/// armed and else pass the call on, to the sanitizer's version where there is one. The library itself knows nothing of
/// this and pays nothing.
/// @code
/// const nxSystemCallFault fault("pthread_create", EAGAIN);
/// EXPECT_EQ(thread.Create(), NX_ERR_THR_RESOURCE);
/// @endcode
/// - By default the next call of the calling thread fails, and the later ones do not.
/// - Functions that return their error return @p error; the others set errno and return -1 or, where they return a
///   pointer, null (mmap: MAP_FAILED).
/// - At most one fault for a function and scope at a time; an unknown name ends the program.
/// - Add a function by a line in nxSystemCalls.inc.
class nxSystemCallFault
{
public:
    struct Options
    {
        unsigned skip = 0;       ///< Calls that succeed first.
        unsigned times = 1;      ///< Calls that fail then.
        bool anyThread = false;  ///< Calls of any thread count, not only those of the thread that made the object.
        bool executed = false;   ///< The call is executed and reported as failed afterwards.
        void (*meanwhile)() = nullptr;  ///< Called by the thread whose call fails, before it does.
    };

    nxSystemCallFault(const char* function, int error);
    nxSystemCallFault(const char* function, int error, const Options& options);
    ~nxSystemCallFault();

    nxSystemCallFault(const nxSystemCallFault&) = delete;
    nxSystemCallFault& operator=(const nxSystemCallFault&) = delete;

    /// How many calls have failed.
    unsigned GetHits() const;

private:
    unsigned _function;
    bool _anyThread;
};

/// Gives the calling thread a wall clock (CLOCK_REALTIME) that does not move, for as long as the object lives.
class nxFixedWallClock
{
public:
    nxFixedWallClock(long long seconds, long nanoseconds);
    ~nxFixedWallClock();

    nxFixedWallClock(const nxFixedWallClock&) = delete;
    nxFixedWallClock& operator=(const nxFixedWallClock&) = delete;
};

/// Gives the calling thread a clock (CLOCK_MONOTONIC) on which every reading takes some time, for as long as the object
/// lives; without waiting, or so that every reading of any clock waits.
class nxHurriedClock
{
public:
    explicit nxHurriedClock(long long nanosecondsAReading, bool waits = false);
    ~nxHurriedClock();

    nxHurriedClock(const nxHurriedClock&) = delete;
    nxHurriedClock& operator=(const nxHurriedClock&) = delete;
};

#endif
