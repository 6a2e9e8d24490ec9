// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGEXIT_H
#define CORE_LOG_INTERNAL_NXLOGEXIT_H

/// What the log does when the process ends.
///
/// Invariant: the end comes in several steps, all by one thread, and nxLogLimits::End holds for all of them together.
class nxLogExit
{
public:
    nxLogExit() = delete;

    /// Has the queue written out when the process ends by exit(), by returning from main or by quick_exit(). Called
    /// again, it does nothing. Called by one thread at a time.
    static void Register() noexcept;
};

#endif
