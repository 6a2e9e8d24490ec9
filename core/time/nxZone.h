// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_TIME_NXZONE_H
#define CORE_TIME_NXZONE_H

#include <memory>
#include <string>

#include "core/enum/nxErrorEnum.h"
#include "core/nxExport.h"
#include "core/time/nxDateTime.h"
#include "core/time/nxTimeStamp.h"

class nxTimeZone;

/// A time zone by its name: what clocks there show at a moment, and at which moment they show a time. The zone of the
/// process, which nxTimeStamp prints, has no part in it.
///
/// - Range: the moments of the years 1900 to 2099 in UTC.
/// - Source: the system's zone database, and where the variable TZDIR names a folder, the files there. A file is read once.
/// - Errors: returned, never thrown; only the allocation of memory can throw. A target is unchanged on failure.
/// - Threads: any, at any time, also in a forked child. No thread may change the variable TZDIR meanwhile.
/// - Ownership: each zone exists once, has about 17 KiB and is kept until the process ends. Users hold plain pointers.
/// @code
/// const nxZone* chicago = nullptr;
/// if (nxZone::Get("America/Chicago", chicago).IsOK())
///     chicago->GetLocal(nxTimeStamp(1'710'059'400, 0));  // 10 March 2024, 03:30
/// @endcode
class NX_CORE_API nxZone
{
public:
    nxZone(const nxZone&) = delete;
    nxZone& operator=(const nxZone&) = delete;

    /// Finds a zone and reads its file if that is the first request for it.
    /// @param ianaName such as "Europe/London" or "UTC". Capitals matter.
    /// @param zone receives the zone; the same name gives the same zone.
    /// @return NX_ERR_INVALID_PARAMETER for a text that is no name: a name has letters, digits, '_', '+' and '-', and '/'
    ///         between its parts; NX_ERR_NOT_FOUND when there is no file of that name that can be read;
    ///         NX_ERR_INSUFFICIENT_DATA when the file is damaged, is no zone or counts leap seconds. A name that failed is
    ///         looked for again the next time.
    [[nodiscard]] static nxErrorEnum Get(const std::string& ianaName, const nxZone*& zone);

    const std::string& GetName() const { return _name; }  ///< The name by which the zone was found.

    /// @return what clocks of the zone show at @p moment, to the nanosecond; null outside the range. Whole seconds in the
    ///         nanoseconds of the moment are carried over.
    nxDateTime GetLocal(const nxTimeStamp& moment) const;

    /// Finds the moment at which clocks of the zone show @p local.
    ///
    /// When clocks are put forward, the times that they skip are moved on by the length of the gap: where 02:00 is
    /// followed by 03:00, 02:30 is taken for 03:30. When clocks are put back, times occur twice.
    /// @param later whether the second of two occurrences is wanted; without effect on all other times.
    /// @return NX_ERR_OBJECT_IS_NULL when @p local has no date; NX_ERR_VALUE_OUT_OF_RANGE for a moment outside the range.
    [[nodiscard]] nxErrorEnum GetMoment(const nxDateTime& local, nxTimeStamp& moment, bool later = false) const;

private:
    [[gnu::visibility("hidden")]] nxZone(const std::string& name, std::unique_ptr<const nxTimeZone> table);
    [[gnu::visibility("hidden")]] ~nxZone();

    [[gnu::visibility("hidden")]] static const nxZone* _FindKept(const std::string& name);
    [[gnu::visibility("hidden")]] static const nxZone* _Keep(const std::string& name,
                                                             std::unique_ptr<const nxTimeZone> table);

    const std::string _name;
    const std::unique_ptr<const nxTimeZone> _table;
    const nxZone* _next = nullptr;  // of the list of all zones
};

#endif
