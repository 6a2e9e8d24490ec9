// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXSYSTEMCALL_H
#define CORE_PLATFORM_LINUX_NXSYSTEMCALL_H

#include <cerrno>

/// Repeats system calls that a signal has interrupted.
///
/// After a thousand interruptions the call fails with EINTR, because a driver or a file system that answers every call in
/// this way would otherwise hold the caller in a loop.
class nxSystemCall
{
public:
    static constexpr int Attempts = 1'000;

    nxSystemCall() = delete;

    /// @param call returns a negative number and sets errno when it fails.
    /// @return what the last call returned; errno is that call's.
    template <class Call>
    static auto RetryInterrupted(const Call& call)
    {
        auto result = call();
        for (int i = 1; result < 0 && errno == EINTR && i < Attempts; ++i)
            result = call();
        return result;
    }
};

#endif
