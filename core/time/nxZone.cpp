// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxZone.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <utility>

#include "core/platform/nxLocalMinute.h"
#include "core/platform/nxTimeZone.h"
#include "core/platform/nxZoneFiles.h"

namespace
{
// All zones that were found. They are searched without a lock, because a process uses few of them and a child may be
// forked at any time. _Keep() publishes a zone and takes those of others (release and acquire); searches load the list (acquire).
constinit std::atomic<const nxZone*> keptZones{nullptr};

bool IsInZoneTable(std::int64_t second) { return second >= nxTimeZone::FirstSecond && second < nxTimeZone::EndSecond; }

// The name becomes a path, so it must not lead out of the database.
bool IsZoneName(std::string_view name)
{
    const auto isPart = [](char c)
    {
        return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_' || c == '+' ||
               c == '-';
    };
    bool isPartBegun = false;
    for (const char c : name)
    {
        if (!isPart(c) && (c != '/' || !isPartBegun))
            return false;
        isPartBegun = c != '/';
    }
    return isPartBegun;
}

// The second, counted from 1970 in UTC, at which clocks show what they would show `local` seconds after 1970 if the zone
// were UTC. @return false outside the table.
bool FindSecondOfZone(const nxTimeZone& table, std::int64_t local, bool later, std::int64_t& second)
{
    // No clock differs from UTC by more.
    constexpr std::int64_t largestOffset = 26 * 3'600;
    const std::int64_t earliest = std::max(local - largestOffset, nxTimeZone::FirstSecond);
    const std::int64_t latest = std::min(local + largestOffset, nxTimeZone::EndSecond - 1);
    if (earliest > latest)
        return false;
    bool isFound = false;
    bool isGap = false;
    std::int64_t inGap = 0;
    for (std::size_t i = table.FindNumber(earliest); i < table.GetSpanCount(); ++i)
    {
        const nxTimeZoneSpan span = table.GetSpan(i);
        if (span.begin > latest)
            break;
        const std::int64_t candidate = local - span.offset;
        if (candidate >= span.begin && candidate < span.end)
        {
            second = candidate;
            isFound = true;
            if (!later)
                return true;
        }
        // After the end of one span, and before the begin of the next.
        const bool isLast = i + 1 == table.GetSpanCount();
        if (!isGap && !isLast && candidate >= span.end && local - table.GetSpan(i + 1).offset < span.end)
        {
            isGap = true;
            inGap = candidate;
        }
    }
    if (!isFound && isGap && IsInZoneTable(inGap))
    {
        second = inGap;
        isFound = true;
    }
    return isFound;
}
}  // namespace

nxZone::nxZone(const std::string& name, std::unique_ptr<const nxTimeZone> table) : _name(name), _table(std::move(table))
{
}

nxZone::~nxZone() = default;

const nxZone* nxZone::_FindKept(const std::string& name)
{
    const nxZone* zone = keptZones.load(std::memory_order_acquire);
    while (zone != nullptr && zone->_name != name)
        zone = zone->_next;
    return zone;
}

const nxZone* nxZone::_Keep(const std::string& name, std::unique_ptr<const nxTimeZone> table)
{
    nxZone* const added = new nxZone(name, std::move(table));
    added->_next = keptZones.load(std::memory_order_acquire);
    do
    {
        // Another thread may have been quicker.
        if (const nxZone* const kept = _FindKept(name))
        {
            delete added;
            return kept;
        }
    } while (!keptZones.compare_exchange_weak(added->_next, added, std::memory_order_acq_rel));
    return added;
}

nxErrorEnum nxZone::Get(const std::string& ianaName, const nxZone*& zone)
{
    if (!IsZoneName(ianaName))
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    const nxZone* found = _FindKept(ianaName);
    if (found == nullptr)
    {
        const auto file = std::make_unique<std::array<char, 65'536>>();
        std::string_view content;
        if (nxZoneFiles::Read(ianaName, *file, content) != nxZoneFiles::Outcome::Read)
            return nxErrorEnum(NX_ERR_NOT_FOUND);
        auto table = std::make_unique<nxTimeZone>();
        if (!table->ReadFile(content))
            return nxErrorEnum(NX_ERR_INSUFFICIENT_DATA);
        found = _Keep(ianaName, std::move(table));
    }
    zone = found;
    return nxErrorEnum();
}

nxDateTime nxZone::GetLocal(const nxTimeStamp& moment) const
{
    constexpr unsigned nanosecondsPerSecond = 1'000'000'000;
    std::int64_t second = moment.GetSeconds();
    if (!IsInZoneTable(second))
        return nxDateTime();
    second += moment.GetNanoseconds() / nanosecondsPerSecond;
    if (!IsInZoneTable(second))
        return nxDateTime();
    const nxLocalMinute local = nxLocalMinute::In(*_table, second);
    return nxDateTime(nxDate(static_cast<unsigned>(local.year), local.month, local.day),
                      nxTime(local.hour, local.minute, local.firstSecond + static_cast<unsigned>(second - local.begin),
                             moment.GetNanoseconds() % nanosecondsPerSecond));
}

nxErrorEnum nxZone::GetMoment(const nxDateTime& local, nxTimeStamp& moment, bool later) const
{
    if (local.GetDate().IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    constexpr std::int64_t secondsPerDay = 86'400;
    const std::int64_t shown =
        local.GetDate().GetDayNumber() * secondsPerDay + local.GetTime().GetSecondsSinceMidnight();
    std::int64_t second = 0;
    if (!FindSecondOfZone(*_table, shown, later, second))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    moment = nxTimeStamp(second, local.GetTime().GetNanoseconds());
    return nxErrorEnum();
}
