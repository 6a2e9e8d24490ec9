// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_LINUX_NXWRITESIGNALS_H
#define CORE_PLATFORM_LINUX_NXWRITESIGNALS_H

#include <pthread.h>
#include <signal.h>
#include <sys/types.h>

#include <cerrno>
#include <ctime>

#include "core/platform/linux/nxSystemCall.h"

/// Keeps the signals of a failed write (SIGXFSZ, SIGPIPE) from the process while the object lives. A signal that was
/// pending before stays pending.
///
/// Threads: for the thread that made it.
class nxWriteSignals
{
public:
    nxWriteSignals()
    {
        sigemptyset(&_signals);
        sigaddset(&_signals, SIGXFSZ);
        sigaddset(&_signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &_signals, &_before);
    }
    nxWriteSignals(const nxWriteSignals&) = delete;
    nxWriteSignals& operator=(const nxWriteSignals&) = delete;
    ~nxWriteSignals() { pthread_sigmask(SIG_SETMASK, &_before, nullptr); }

    /// Makes @p call, such as write(2), and takes the signal of its failure away. @return what the call returned.
    template <class Call>
    ssize_t Do(const Call& call) const
    {
        sigset_t waiting;
        sigpending(&waiting);
        const ssize_t result = call();
        if (result >= 0)
            return result;
        const int error = errno;
        if (error == EFBIG)
            _Consume(SIGXFSZ, waiting);
        else if (error == EPIPE)
            _Consume(SIGPIPE, waiting);
        errno = error;
        return result;
    }

private:
    static void _Consume(int signal, const sigset_t& waitingBefore)
    {
        if (sigismember(&waitingBefore, signal) == 1)
            return;
        sigset_t one;
        sigemptyset(&one);
        sigaddset(&one, signal);
        const timespec noTime{};
        nxSystemCall::RetryInterrupted([&] { return sigtimedwait(&one, nullptr, &noTime); });
    }

    sigset_t _signals;
    sigset_t _before;
};

#endif
