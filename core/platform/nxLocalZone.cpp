#include "core/platform/nxLocalZone.h"

#include <pthread.h>
#include <sys/mman.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <functional>
#include <new>
#include <span>
#include <string_view>
#include <utility>

#include "core/platform/nxTimeZone.h"

namespace
{
// Tables and files live in memory straight from the system: printing a time stamp allocates nothing, and a table may be
// built by the first that is printed.
template <class Content>
class Pages
{
public:
    Pages()
    {
        void* const memory = mmap(nullptr, sizeof(Content), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory != MAP_FAILED)
            _content = new (memory) Content;
    }
    Pages(const Pages&) = delete;
    Pages& operator=(const Pages&) = delete;
    ~Pages()
    {
        if (_content != nullptr)
            munmap(_content, sizeof(Content));
    }
    explicit operator bool() const { return _content != nullptr; }
    Content* operator->() const { return _content; }
    Content& operator*() const { return *_content; }
    Content* Release() { return std::exchange(_content, nullptr); }

private:
    Content* _content = nullptr;
};

// Every table that was ever in use: threads may still be reading it, and a process sees few zones.
struct KeptTable
{
    nxTimeZone zone;
    KeptTable* next = nullptr;
};

constinit std::atomic<KeptTable*> keptTables{nullptr};
constinit std::atomic<std::size_t> lastAttempt{0};  // what the last table was, or failed to be, built for
constinit std::atomic<bool> isForkedChild{false};

// The mark of the zone that the last table was, or failed to be, built for. Two halves of two marks cost a comparison.
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

bool AskLibrary(std::int64_t second, std::tm& fields)
{
    const std::time_t moment = second;
    return localtime_r(&moment, &fields) != nullptr;
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

const nxTimeZone* Keep(Pages<KeptTable>& table)
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

// Never 0.
std::size_t AttemptFor(const char* setting, const nxLocalZoneMark& mark)
{
    const std::size_t name = setting != nullptr ? std::hash<std::string_view>()(setting) : 0;
    const auto timezone = static_cast<std::size_t>(mark.timezone);
    const auto daylight = static_cast<std::size_t>(mark.daylight);
    return (name ^ (timezone << 20) ^ (daylight << 50)) | 1;
}
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

bool nxLocalZone::_FindWithLibrary(std::int64_t second, nxLocalMinute& minute)
{
    // First the C library, which may set the zone only now.
    std::tm fields{};
    if (!AskLibrary(second, fields))
        return false;
    const nxTimeZone* table = _table.load(std::memory_order_acquire);
    const bool isWrong = table != nullptr && !_AgreesAbout(*table, second);
    if (table == nullptr || isWrong || TableMark() != nxLocalZoneMark::Now())
        table = _Rebuild(isWrong);
    const bool useTable = _Covers(table, second) && _Agrees(*table, second, fields);
    minute = useTable ? _FromTable(*table, second) : FromFields(fields, second);
    return true;
}

// Builds the table of the zone that is set now, or does without one. Unless forced, tries once for a setting.
const nxTimeZone* nxLocalZone::_Rebuild(bool force)
{
    if (lastAttempt.load(std::memory_order_relaxed) == 0)
        pthread_atfork(nullptr, nullptr, [] { isForkedChild.store(true, std::memory_order_relaxed); });
    const nxLocalZoneMark mark = nxLocalZoneMark::Now();
    const char* const setting = std::getenv("TZ");
    const std::size_t attempt = AttemptFor(setting, mark);
    if (!force && lastAttempt.load(std::memory_order_relaxed) == attempt)
        return _table.load(std::memory_order_acquire);
    Pages<KeptTable> built;
    Pages<std::array<char, 16'384>> file;
    const bool isUsable = built && file && built->zone.Load(setting, *file) && _AgreesThroughout(built->zone);
    const nxTimeZone* const table = isUsable ? Keep(built) : nullptr;
    _table.store(table, std::memory_order_release);
    tableTimezone.store(mark.timezone, std::memory_order_relaxed);
    tableDaylight.store(mark.daylight, std::memory_order_relaxed);
    lastAttempt.store(attempt, std::memory_order_relaxed);
    return table;
}

bool nxLocalZone::_Agrees(const nxTimeZone& zone, std::int64_t second, const std::tm& fields)
{
    const nxLocalMinute minute = _FromTable(zone, second);
    return fields.tm_sec == static_cast<int>(minute.firstSecond + static_cast<unsigned>(second - minute.begin)) &&
           fields.tm_min == static_cast<int>(minute.minute) && fields.tm_hour == static_cast<int>(minute.hour) &&
           fields.tm_mday == static_cast<int>(minute.day);
}

// Compares the table with the C library at a second, or at one of our days in the place of a distant one.
bool nxLocalZone::_AgreesAbout(const nxTimeZone& zone, std::int64_t second)
{
    const std::int64_t ofOurDays = std::min(second & 0xFFFF'FFFF, nxTimeZone::EndSecond - 1);
    const std::int64_t compared = _Covers(&zone, second) ? second : ofOurDays;
    std::tm fields{};
    return AskLibrary(compared, fields) && _Agrees(zone, compared, fields);
}

// Compares the table with the C library on both sides of every change of the offset.
bool nxLocalZone::_AgreesThroughout(const nxTimeZone& zone)
{
    for (std::size_t i = 0; i < zone.GetSpanCount(); ++i)
    {
        const nxTimeZoneSpan span = zone.GetSpan(i);
        if (!_AgreesAbout(zone, span.begin) || !_AgreesAbout(zone, span.end - 1))
            return false;
    }
    return true;
}
