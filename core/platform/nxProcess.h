// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXPROCESS_H
#define CORE_PLATFORM_NXPROCESS_H

#include <string>

/// The running process and its machine, as the system knows them. No call needs a network, a name server or permission.
/// Every call asks the system again and may come from any thread.
class nxProcess
{
public:
    nxProcess() = delete;

    /// A moment in seconds and nanoseconds since 1 January 1970, UTC.
    struct StartTime
    {
        long long seconds;
        unsigned nanoseconds;
    };

    /// The process's number. A forked child has its own.
    static unsigned GetID();

    /// Whether the main thread has ended, and the calling thread and @p others are the only ones left. False when the system
    /// does not tell.
    static bool IsOnlyThreadLeft(unsigned others);

    /// The moment at which the system started the process, to a hundredth of a second. It is calculated from the wall
    /// clock and the age of the process, so that calls before and after a clock step differ: ask once and keep the answer.
    /// When the system does not tell, the answer is the present.
    static StartTime GetStartTime();

    /// The configured name of the machine; "localhost" when it has none.
    static std::string GetHostName();

    /// The address at which other machines are most likely to reach this one, from the interfaces that are up: an IPv4
    /// address, else a routable IPv6 address, else a link-local address, else the loopback address "127.0.0.1".
    static std::string GetIPAddress();

    /// The name of the program's file without its folder, as it was started.
    static std::string GetProgramName();

    /// Has @p function called when the process ends by exit or by returning from main, and by quick_exit.
    /// @return whether the system accepted.
    static bool CallAtEnd(void (*function)()) noexcept;
};

#endif
