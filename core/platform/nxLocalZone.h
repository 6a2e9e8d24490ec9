// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXLOCALZONE_H
#define CORE_PLATFORM_NXLOCALZONE_H

#include <atomic>
#include <cstdint>
#include <ctime>

#include "core/platform/linux/nxSystemZone.h"
#include "core/platform/nxLocalMinute.h"
#include "core/platform/nxTimeZone.h"

/// The local time of the process: the answers of localtime_r, from a table that gives the same ones.
///
/// The C library changes the process's zone when a thread calls tzset(), localtime() or a function that does, after the
/// variable TZ was changed. A table is used only when it agrees with localtime_r on both sides of every change of the
/// clock and in every month of its two hundred years. When the caller asks for it, once in a while, it is compared
/// again: about the second in question, and throughout when TZ has another text than the table was built for. Where
/// there is no such table, localtime_r answers each time; a table is tried again after some thousand answers.
///
/// The library's own threads leave the environment alone, because a program that has no other threads may change it with
/// setenv(). They use the table that another thread has built. After a change of the zone localtime_r answers them until
/// another thread has asked; a change that neither the mark nor their own times show reaches them then, too.
class nxLocalZone
{
public:
    nxLocalZone() = delete;

    /// Finds the minute that @p second lies in without asking the C library.
    /// @return false when that cannot be done, see FindAndCheck().
    static bool Find(std::int64_t second, nxLocalMinute& minute)
    {
        const nxTimeZone* const table = _table.load(std::memory_order_acquire);
        if (!_Covers(table, second)) [[unlikely]]
            return false;
        minute = nxLocalMinute::In(*table, second);
        return true;
    }

    /// Finds the minute that @p second lies in, and makes sure that the table is that of the process's zone: compares
    /// it with localtime_r, and builds a new one if they differ or the zone's mark has changed.
    ///
    /// A forked child whose table has the right mark skips the comparison, because it could wait for ever for a lock of
    /// the C library that another thread of the parent held.
    /// @return false when the C library's calendar does not reach that far.
    static bool FindAndCheck(std::int64_t second, nxLocalMinute& minute);

    /// Called by the thread that starts a thread of the library: makes the C library set the zone, and builds the table, if
    /// that has not been done. Does nothing in a forked child. @param second any of our days.
    static void PrepareForOwnThread(std::int64_t second) noexcept;
    /// Called by a thread of the library: it never reads the environment from now on.
    static void LeaveEnvironmentAlone() noexcept;

private:
    static bool _FindWithLibrary(std::int64_t second, nxLocalMinute& minute);
    static bool _IsOutOfDate(const nxTimeZone* table);
    static const nxTimeZone* _Replace(const nxTimeZone* old, std::int64_t second, bool isWrong);
    static const nxTimeZone* _Build(const char* setting, std::int64_t second);
    static bool _AgreesAbout(const nxTimeZone& zone, std::int64_t second);
    static bool _Agrees(const nxTimeZone& zone, std::int64_t second, const std::tm& fields);
    static bool _AgreesThroughout(const nxTimeZone& zone);

    static bool _Covers(const nxTimeZone* zone, std::int64_t second)
    {
        return zone != nullptr && nxTimeZone::FirstSecond <= second && second < nxTimeZone::EndSecond;
    }

    // Null where localtime_r must be asked. _Replace() stores a complete table (release), all readers load it (acquire);
    // relaxed where it becomes null, which publishes nothing.
    static std::atomic<const nxTimeZone*> _table;
};

#endif
