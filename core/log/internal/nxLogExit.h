#ifndef CORE_LOG_INTERNAL_NXLOGEXIT_H
#define CORE_LOG_INTERNAL_NXLOGEXIT_H

#include <string_view>

/// What the log does when the process ends, and how it complains while it cannot log. No object.
class nxLogExit
{
public:
    nxLogExit() = delete;

    /// Has the queue written out when the process ends by exit(), by returning from main or by quick_exit(). Called
    /// again, does nothing; by one thread at a time.
    static void Register() noexcept;

    /// Ends the process if the calling thread, the deferred-write thread, is the only one left: main and all others
    /// have ended by pthread_exit(). Without this one the system would end it now, with status 0.
    static void EndProcessIfLast() noexcept;

    /// Writes @p text to the error stream.
    static void Complain(std::string_view text) noexcept;
};

#endif
