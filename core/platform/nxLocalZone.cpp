// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxLocalZone.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <functional>
#include <span>
#include <string_view>

#include "core/platform/nxEnvironment.h"
#include "core/platform/nxForkHandlers.h"
#include "core/platform/nxPages.h"
#include "core/platform/nxTimeZone.h"

namespace
{
// Every table that was ever in use. They are kept because threads may still be reading them, and a process sees few
// zones. Tables are in pages of their own, because printing a time stamp allocates nothing and the first one that is
// printed may build a table.
struct KeptTable
{
    nxTimeZone zone;
    KeptTable* next = nullptr;
};

// Keep() adds a table that is complete (release) and looks at those that were added before (acquire). Relaxed where it
// reads the value that the exchange compares.
constinit std::atomic<KeptTable*> keptTables{nullptr};
// What the last table was built for, even when that failed. Relaxed: a reader that meets an old one looks once more.
constinit std::atomic<std::size_t> lastAttempt{0};
constinit std::atomic<bool> isForkedChild{false};  // relaxed: stored while the child has one thread

constinit std::atomic<unsigned> asksWithoutTable{0};  // relaxed: only how often to look

// Only one thread at a time looks for a table, so that the table in use, its mark and its attempt belong together. The
// others ask the C library meanwhile.
class Turn
{
public:
    Turn() : _isOurs(!_taken.exchange(true, std::memory_order_acquire)) {}
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn()
    {
        if (_isOurs)
            EndInChild();
    }
    bool IsOurs() const { return _isOurs; }
    static void EndInChild() { _taken.store(false, std::memory_order_release); }

private:
    // Stored at the end of a turn (release), exchanged at the beginning of the next (acquire).
    static constinit std::atomic<bool> _taken;
    bool _isOurs;
};
constinit std::atomic<bool> Turn::_taken{false};

// The results of the last attempts; null where there is no table. There are several, because some zones change their
// mark with the moments that the C library is asked about. Only the thread whose turn it is touches them.
struct Outcome
{
    std::size_t attempt;
    const nxTimeZone* table;
};
constinit std::array<Outcome, 4> outcomes{};
constinit std::size_t nextOutcome = 0;

// The mark of the zone that the last table was built for, even when that failed. A reader that meets halves of two marks
// makes one comparison more, so relaxed.
constinit std::atomic<long> tableTimezone{0};
constinit std::atomic<int> tableDaylight{0};

nxLocalZoneMark TableMark()
{
    return {tableTimezone.load(std::memory_order_relaxed), tableDaylight.load(std::memory_order_relaxed)};
}

nxLocalMinute FromFields(const std::tm& fields, std::int64_t second)
{
    const int year = fields.tm_year % 100;  // 1900 years more or less do not show
    return {second,
            1,
            static_cast<unsigned>(fields.tm_sec),
            1'900LL + fields.tm_year,
            static_cast<unsigned>(year < 0 ? year + 100 : year),
            static_cast<unsigned>(fields.tm_mon) + 1,
            static_cast<unsigned>(fields.tm_mday),
            static_cast<unsigned>(fields.tm_hour),
            static_cast<unsigned>(fields.tm_min)};
}

bool IsSame(const nxTimeZone& left, const nxTimeZone& right)
{
    if (left.GetSpanCount() != right.GetSpanCount())
        return false;
    for (std::size_t i = 0; i < left.GetSpanCount(); ++i)
        if (left.GetSpan(i) != right.GetSpan(i))
            return false;
    return true;
}

const nxTimeZone* Keep(nxPages<KeptTable>& table)
{
    for (const KeptTable* kept = keptTables.load(std::memory_order_acquire); kept != nullptr; kept = kept->next)
        if (IsSame(kept->zone, table->zone))
            return &kept->zone;
    KeptTable* const added = table.Release();
    added->next = keptTables.load(std::memory_order_relaxed);
    while (!keptTables.compare_exchange_weak(added->next, added, std::memory_order_release, std::memory_order_relaxed))
    {
    }
    return &added->zone;
}

constinit thread_local bool leavesEnvironmentAlone = false;

// A copy of the variable TZ.
class Setting
{
public:
    Setting() : _error(leavesEnvironmentAlone ? EBUSY : nxEnvironment::Copy("TZ", _text)) {}

    // Whether it could be read. It is known, too, that there is no such variable.
    bool IsKnown() const { return _error == 0 || _error == ENOENT; }
    const char* Get() const { return _error == 0 ? _text : nullptr; }

private:
    char _text[1'024];
    int _error;
};

// Never 0.
std::size_t AttemptFor(const char* setting, const nxLocalZoneMark& mark)
{
    const std::size_t name = setting != nullptr ? std::hash<std::string_view>()(setting) : 0;
    const auto timezone = static_cast<std::size_t>(mark.timezone);
    const auto daylight = static_cast<std::size_t>(mark.daylight);
    return (name ^ (timezone << 20) ^ (daylight << 50)) | 1;
}
void RepairChild()
{
    isForkedChild.store(true, std::memory_order_relaxed);
    Turn::EndInChild();
    nxEnvironment::AfterForkInChild();
    nxSystemZone::AfterForkInChild();
}

constexpr nxForkHandlers::Functions aroundForks{&nxSystemZone::BeforeFork, &nxSystemZone::AfterForkInParent,
                                                &RepairChild};
// Registered while the library is loaded: the first time stamp that is printed may meet a fork.
[[maybe_unused]] const bool isRegistered = nxForkHandlers::Register(nxForkHandlers::Rank::LocalZone, aroundForks);
}  // namespace

constinit std::atomic<const nxTimeZone*> nxLocalZone::_table{nullptr};

bool nxLocalZone::FindAndCheck(std::int64_t second, nxLocalMinute& minute)
{
    if (isForkedChild.load(std::memory_order_relaxed) && TableMark() == nxLocalZoneMark::Now() && Find(second, minute))
        return true;
    const int error = errno;
    const bool found = _FindWithLibrary(second, minute);
    errno = error;
    return found;
}

// Not in a forked child, where the caller might wait for ever for a lock of the C library.
void nxLocalZone::PrepareForOwnThread(std::int64_t second) noexcept
{
    nxLocalMinute minute;
    if (!Find(second, minute) && !isForkedChild.load(std::memory_order_relaxed))
        static_cast<void>(FindAndCheck(second, minute));
}

void nxLocalZone::LeaveEnvironmentAlone() noexcept { leavesEnvironmentAlone = true; }

bool nxLocalZone::_FindWithLibrary(std::int64_t second, nxLocalMinute& minute)
{
    // The C library comes first, because it may set the zone only now.
    std::tm fields{};
    if (!nxSystemZone::GetLocalTime(second, fields))
        return false;
    const nxTimeZone* table = _table.load(std::memory_order_acquire);
    const bool isWrong = table != nullptr && !_AgreesAbout(*table, second);
    if (isWrong || _IsOutOfDate(table))
        table = _Replace(table, second, isWrong);
    const bool useTable = _Covers(table, second) && _Agrees(*table, second, fields);
    minute = useTable ? nxLocalMinute::In(*table, second) : FromFields(fields, second);
    return true;
}

// Whether the table may belong to another zone or, where there is none, whether it is time to look for one.
bool nxLocalZone::_IsOutOfDate(const nxTimeZone* table)
{
    constexpr unsigned asksBetweenLooks = 256;
    const nxLocalZoneMark mark = nxLocalZoneMark::Now();
    if (TableMark() != mark)
        return true;
    if (table == nullptr)
        return asksWithoutTable.fetch_add(1, std::memory_order_relaxed) % asksBetweenLooks == 0;
    // Two zones may have one mark and agree about this second.
    const Setting setting;
    return setting.IsKnown() && lastAttempt.load(std::memory_order_relaxed) != AttemptFor(setting.Get(), mark);
}

// Finds the table of the zone that is set now, or leaves none in use. The caller has just asked the C library about
// @p second. @param isWrong whether @p old disagrees with it.
const nxTimeZone* nxLocalZone::_Replace(const nxTimeZone* old, std::int64_t second, bool isWrong)
{
    // From here on no thread uses the old table, whichever thread finds the new one.
    _table.compare_exchange_strong(old, nullptr, std::memory_order_relaxed);
    const Turn turn;
    if (!turn.IsOurs())
        return nullptr;
    const Setting setting;
    if (!setting.IsKnown())
        return nullptr;
    const nxLocalZoneMark mark = nxLocalZoneMark::Now();
    const std::size_t attempt = AttemptFor(setting.Get(), mark);
    const auto known = std::find_if(outcomes.begin(), outcomes.end(),
                                    [&](const Outcome& outcome) { return outcome.attempt == attempt; });
    // What kept a file from being read, such as a limit on open files, may have passed.
    constexpr unsigned asksBetweenAttempts = 4'096;
    const bool tryAgain = asksWithoutTable.load(std::memory_order_relaxed) % asksBetweenAttempts == 1;
    Outcome& outcome = known != outcomes.end() ? *known : outcomes[nextOutcome++ % outcomes.size()];
    if (known == outcomes.end() || isWrong || (tryAgain && outcome.table == nullptr))
        outcome = {attempt, _Build(setting.Get(), second)};
    _table.store(outcome.table, std::memory_order_release);
    tableTimezone.store(mark.timezone, std::memory_order_relaxed);
    tableDaylight.store(mark.daylight, std::memory_order_relaxed);
    lastAttempt.store(attempt, std::memory_order_relaxed);
    return outcome.table;
}

// @return null when there is no table that agrees with the C library.
const nxTimeZone* nxLocalZone::_Build(const char* setting, std::int64_t second)
{
    nxPages<KeptTable> built;
    nxPages<std::array<char, 16'384>> file;
    if (!built || !file)
        return nullptr;
    // An unreadable setting, or a machine without zones, means UTC if the C library shows that it took it so.
    const bool isKnown = built->zone.Load(setting, *file) ||
                         (nxLocalZoneMark::Now() == nxLocalZoneMark() && built->zone.ReadRule("UTC0"));
    // The caller's second is compared last, which leaves the zone's mark as the caller saw it.
    return isKnown && _AgreesThroughout(built->zone) && _AgreesAbout(built->zone, second) ? Keep(built) : nullptr;
}

bool nxLocalZone::_Agrees(const nxTimeZone& zone, std::int64_t second, const std::tm& fields)
{
    const nxLocalMinute minute = nxLocalMinute::In(zone, second);
    return fields.tm_sec == static_cast<int>(minute.firstSecond + static_cast<unsigned>(second - minute.begin)) &&
           fields.tm_min == static_cast<int>(minute.minute) && fields.tm_hour == static_cast<int>(minute.hour) &&
           fields.tm_mday == static_cast<int>(minute.day);
}

// Compares the table with the C library at a second, or at one of our days instead of a distant one.
bool nxLocalZone::_AgreesAbout(const nxTimeZone& zone, std::int64_t second)
{
    const std::int64_t ofOurDays = std::min(second & 0xFFFF'FFFF, nxTimeZone::EndSecond - 1);
    const std::int64_t compared = _Covers(&zone, second) ? second : ofOurDays;
    std::tm fields{};
    return nxSystemZone::GetLocalTime(compared, fields) && _Agrees(zone, compared, fields);
}

// Compares the table with the C library on both sides of every change of the offset, and also in every month, because a
// table that lacks summer time has no changes.
bool nxLocalZone::_AgreesThroughout(const nxTimeZone& zone)
{
    for (std::size_t i = 0; i < zone.GetSpanCount(); ++i)
    {
        const nxTimeZoneSpan span = zone.GetSpan(i);
        if (!_AgreesAbout(zone, span.begin) || !_AgreesAbout(zone, span.end - 1))
            return false;
    }
    constexpr std::int64_t lessThanAMonth = 28 * 86'400;
    for (std::int64_t each = nxTimeZone::FirstSecond; each < nxTimeZone::EndSecond; each += lessThanAMonth)
        if (!_AgreesAbout(zone, each))
            return false;
    return true;
}
