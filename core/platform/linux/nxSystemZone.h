// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXSYSTEMZONE_H
#define CORE_PLATFORM_LINUX_NXSYSTEMZONE_H

#include <cstdint>
#include <ctime>

/// The visible part, at the cost of two loads, of the zone that the C library has set for the process. Different marks
/// mean different zones; equal marks do not prove equal zones.
struct nxLocalZoneMark
{
    long timezone = 0;
    int daylight = 0;

    // Relaxed: plain words of the C library, read as they are at the moment.
    static nxLocalZoneMark Now()
    {
        return {__atomic_load_n(&::timezone, __ATOMIC_RELAXED), __atomic_load_n(&::daylight, __ATOMIC_RELAXED)};
    }
    friend bool operator==(const nxLocalZoneMark&, const nxLocalZoneMark&) = default;
};

/// The time zone that the C library has set for the process.
class nxSystemZone
{
public:
    nxSystemZone() = delete;

    /// Asks the C library for the local time at @p second, counted from 1 January 1970 00:00 UTC. The first call may set
    /// the zone from the variable TZ, safely beside nxEnvironment::Set(); later ones do not read the environment. Takes a
    /// lock of the C library, which the forks of that library do not take: a child that was forked inside the call would
    /// wait for it for ever. One thread at a time is inside, and none at a fork.
    /// @return false when the C library's calendar does not reach that far.
    static bool GetLocalTime(std::int64_t second, std::tm& fields);

    /// Keeps every thread out of GetLocalTime() until the fork is done. Gives up after a second.
    static void BeforeFork();
    static void AfterForkInParent();
    static void AfterForkInChild();
};

#endif
