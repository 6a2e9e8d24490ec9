// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_NXBLOCKEDSIGNALS_H
#define CORE_THREAD_NXBLOCKEDSIGNALS_H

#include <csignal>
#include <cstdint>
#include <initializer_list>
#include <vector>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"

/// Keeps signals from having an effect while it lives, so that an nxSignalThread can wait for them.
///
/// Make it first of all in main. A signal is blocked for each thread on its own, and a thread inherits what is blocked from
/// the one that starts it: threads that are started later have the signals blocked too. A signal that comes meanwhile is kept
/// by the system, once for each number. No handler of a signal is installed.
///
/// - Threads that exist already still accept the signals. A library may have started one while it was loaded. Such a thread
///   gets the signal with its former effect, which usually ends the process. FindOpenThreads() tells their numbers, and
///   nxSignalThread::Start() writes a warning about each to the log. The log's own thread blocks all signals by itself.
/// - Ignored signals: a signal that the process ignores is left alone. nohup makes a program ignore SIGHUP, and a shell
///   without job control makes its background programs ignore SIGINT. A program that wants such a signal nevertheless calls
///   `std::signal(SIGHUP, SIG_DFL)` before.
/// - Destructor: unblocks for the calling thread what the constructor has blocked. A signal that is still kept then has its
///   former effect. Call it in the thread of the constructor, at the end of main.
/// - Fork: a child has the signals blocked as well. If it goes on as another program, call RestoreInChild() before exec. A
///   program that is started by posix_spawn() takes what is blocked from POSIX_SPAWN_SETSIGMASK, and one that is started by
///   std::system() or popen() has the signals blocked.
/// - Threads: constant operations may be called by any.
/// @code
/// int main()
/// {
///     const nxBlockedSignals blocked;  // SIGTERM, SIGINT and SIGHUP
///     Server server;
///     nxSignalThread signals(blocked);
///     ...
/// @endcode
class NX_CORE_API nxBlockedSignals
{
public:
    /// Blocks SIGTERM, SIGINT and SIGHUP.
    nxBlockedSignals();
    /// Blocks @p signals. GetError() tells whether one of them is none that a thread can wait for.
    explicit nxBlockedSignals(std::initializer_list<int> signals);
    ~nxBlockedSignals();
    nxBlockedSignals(const nxBlockedSignals&) = delete;
    nxBlockedSignals& operator=(const nxBlockedSignals&) = delete;

    /// @return NX_ERR_INVALID_PARAMETER when the constructor was given a number that is no signal, SIGKILL, SIGSTOP, or a
    ///         signal of a fault, such as SIGSEGV. The other signals are blocked nevertheless.
    [[nodiscard]] nxErrorEnum GetError() const { return _error; }

    /// Whether @p signal is blocked by this object.
    bool Contains(int signal) const noexcept;
    /// Whether @p signal was left alone because the process ignored it.
    bool IsIgnored(int signal) const noexcept;

    /// @return the system's numbers of the threads that still accept one of the signals, as top and gdb show them. Empty
    ///         if there is none, and where /proc cannot be read.
    std::vector<unsigned> FindOpenThreads() const;

    /// Unblocks for the calling thread what the constructor has blocked. For a forked child that calls exec next; may be
    /// called wherever only calls are allowed that are safe in a signal handler.
    void RestoreInChild() const noexcept;

private:
    std::uint64_t _signals = 0;  // a bit for each signal of this object
    std::uint64_t _added = 0;    // those that were not blocked before
    std::uint64_t _ignored = 0;  // asked for, and left alone
    nxErrorEnum _error;
};

#endif
