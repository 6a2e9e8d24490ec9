#ifndef CORE_PLATFORM_LINUX_NXUNINTERRUPTED_H
#define CORE_PLATFORM_LINUX_NXUNINTERRUPTED_H

#include <cerrno>

/// Makes system calls again that a signal has interrupted.
///
/// Not for ever: a driver or a file system that answers every call so would hold the caller in a loop, so that after a
/// thousand interruptions the call has failed, with EINTR.
class nxUninterrupted
{
public:
    static constexpr int Attempts = 1'000;

    nxUninterrupted() = delete;

    /// @param call returns a negative number and sets errno when it fails.
    /// @return what the last call returned; errno is that call's.
    template <class Call>
    static auto Do(const Call& call)
    {
        auto result = call();
        for (int i = 1; result < 0 && errno == EINTR && i < Attempts; ++i)
            result = call();
        return result;
    }
};

#endif
