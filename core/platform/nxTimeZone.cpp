#include "core/platform/nxTimeZone.h"

#include <algorithm>
#include <array>

#include "core/platform/nxEnvironment.h"
#include "core/platform/nxFile.h"

namespace
{
constexpr std::int64_t secondsPerDay = 86'400;

bool IsLeap(std::int64_t year) { return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0; }

// Days from 1 January 1970 to 1 January of a year after the year 0.
std::int64_t DaysToYear(std::int64_t year)
{
    const std::int64_t before = year - 1;
    return before * 365 + before / 4 - before / 100 + before / 400 - 719'162;
}

std::int64_t YearOf(std::int64_t second)
{
    std::int64_t year = 1'900 + (second - nxTimeZone::FirstSecond) / secondsPerDay / 366;
    while (DaysToYear(year + 1) * secondsPerDay <= second)
        ++year;
    return year;
}

// Takes a rule apart from its front. What is not there is not taken.
class RuleReader
{
public:
    explicit RuleReader(std::string_view text) : _rest(text) {}

    bool AtEnd() const { return _rest.empty(); }

    bool Take(char wanted)
    {
        if (_rest.empty() || _rest.front() != wanted)
            return false;
        _rest.remove_prefix(1);
        return true;
    }

    bool TakeNumber(int smallest, int largest, int& number)
    {
        std::size_t size = 0;
        int value = 0;
        while (size < _rest.size() && IsDigit(_rest[size]) && value <= largest)
            value = value * 10 + (_rest[size++] - '0');
        if (size == 0 || value < smallest || value > largest)
            return false;
        _rest.remove_prefix(size);
        number = value;
        return true;
    }

    // The name of a zone: three letters or more, or what stands between < and >.
    bool TakeName()
    {
        std::size_t size = 0;
        if (!_rest.empty() && _rest.front() == '<')
            size = _rest.find('>') + 1;  // 0 when there is none
        else
            while (size < _rest.size() && IsLetter(_rest[size]))
                ++size;
        if (size < 3)
            return false;
        _rest.remove_prefix(size);
        return true;
    }

    // "[+-]hh[:mm[:ss]]", in seconds.
    bool TakeTime(int largestHour, std::int32_t& seconds)
    {
        const bool negative = Take('-');
        if (!negative)
            Take('+');
        int hour = 0, minute = 0, second = 0;
        if (!TakeNumber(0, largestHour, hour))
            return false;
        if (Take(':') && !TakeNumber(0, 59, minute))
            return false;
        if (Take(':') && !TakeNumber(0, 59, second))
            return false;
        const int total = hour * 3600 + minute * 60 + second;
        seconds = negative ? -total : total;
        return true;
    }

private:
    static bool IsDigit(char c) { return '0' <= c && c <= '9'; }
    static bool IsLetter(char c) { return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z'); }

    std::string_view _rest;
};

// A day of every year, and a time on it.
class YearlyMoment
{
public:
    // "J59", "59" or "M10.5.0", and "/3" for a time other than two o'clock.
    bool Read(RuleReader& reader)
    {
        constexpr int largestHour = 167;
        return ReadDay(reader) && (!reader.Take('/') || reader.TakeTime(largestHour, _time));
    }

    // Seconds since 1970, on a clock that is `offset` ahead of UTC.
    std::int64_t InYear(std::int64_t year, std::int32_t offset) const
    {
        // The C library puts the rules of all years before 1970 into that year.
        const std::int64_t start = DaysToYear(std::max<std::int64_t>(year, 1970));
        return (start + DayOfYear(year)) * secondsPerDay + _time - offset;
    }

private:
    enum class Kind
    {
        DayWithoutLeapDay,  // 1 to 365; 29 February is not counted
        Day,                // 0 to 365
        Weekday             // the _week-th _day of _month; the fifth is the last
    };

    bool ReadDay(RuleReader& reader)
    {
        if (reader.Take('J'))
        {
            _kind = Kind::DayWithoutLeapDay;
            return reader.TakeNumber(1, 365, _day);
        }
        if (reader.Take('M'))
        {
            _kind = Kind::Weekday;
            return reader.TakeNumber(1, 12, _month) && reader.Take('.') && reader.TakeNumber(1, 5, _week) &&
                   reader.Take('.') && reader.TakeNumber(0, 6, _day);
        }
        return reader.TakeNumber(0, 365, _day);
    }

    std::int64_t DayOfYear(std::int64_t year) const
    {
        if (_kind == Kind::Day)
            return _day;
        if (_kind == Kind::DayWithoutLeapDay)
            return _day - 1 + (_day >= 60 && IsLeap(year) ? 1 : 0);
        return DayOfYearOfWeekday(year);
    }

    std::int64_t DayOfYearOfWeekday(std::int64_t year) const
    {
        static constexpr int daysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
        const int first = daysBefore[_month - 1] + (IsLeap(year) && _month > 2 ? 1 : 0);
        const int next = daysBefore[_month] + (IsLeap(year) && _month > 1 ? 1 : 0);
        constexpr int thursday = 4;  // 1 January 1970
        const auto weekday = static_cast<int>(((DaysToYear(year) + first + thursday) % 7 + 7) % 7);
        const int found = first + (_day - weekday + 7) % 7 + (_week - 1) * 7;
        return found < next ? found : found - 7;
    }

    Kind _kind = Kind::Day;
    int _day = 0;
    int _week = 0;
    int _month = 0;
    std::int32_t _time = 7'200;
};

// Offsets for every year: one, or two with the moments at which they take turns.
class Rule
{
public:
    // "EST5" or "CET-1CEST,M3.5.0,M10.5.0/3". Summer time without its moments is refused.
    bool Read(std::string_view text)
    {
        constexpr int largestHour = 24;
        RuleReader reader(text);
        if (!reader.TakeName() || !reader.TakeTime(largestHour, _standard))
            return false;
        _standard = -_standard;
        if (reader.AtEnd())
            return true;
        _hasSummer = true;
        if (!reader.TakeName())
            return false;
        _summer = _standard + 3'600;
        if (!reader.Take(','))
        {
            if (!reader.TakeTime(largestHour, _summer) || !reader.Take(','))
                return false;
            _summer = -_summer;
        }
        return _summerBegins.Read(reader) && reader.Take(',') && _summerEnds.Read(reader) && reader.AtEnd();
    }

    // Calls add(second, offset) for `begin` and each later moment of the table at which another offset may begin.
    template <class Add>
    void Unroll(std::int64_t begin, Add add) const
    {
        if (!_hasSummer)
            return add(begin, _standard);
        for (std::int64_t year = YearOf(begin); DaysToYear(year) * secondsPerDay < nxTimeZone::EndSecond; ++year)
            UnrollYear(year, begin, add);
    }

private:
    template <class Add>
    void UnrollYear(std::int64_t year, std::int64_t begin, Add add) const
    {
        const std::int64_t yearBegins = DaysToYear(year) * secondsPerDay;
        const std::int64_t yearEnds = DaysToYear(year + 1) * secondsPerDay;
        const std::int64_t summerBegins = _summerBegins.InYear(year, _standard);
        const std::int64_t summerEnds = _summerEnds.InYear(year, _summer);
        // In the south, summer begins late in the year and ends early in it.
        const bool south = summerBegins > summerEnds;
        const auto offsetAt = [&](std::int64_t second)
        {
            const bool summer =
                south ? second < summerEnds || second >= summerBegins : second >= summerBegins && second < summerEnds;
            return summer ? _summer : _standard;
        };
        const std::int64_t moments[] = {yearBegins, south ? summerEnds : summerBegins,
                                        south ? summerBegins : summerEnds};
        for (const std::int64_t moment : moments)
        {
            const std::int64_t second = std::max({moment, yearBegins, begin});
            if (second < yearEnds)
                add(second, offsetAt(second));
        }
    }

    std::int32_t _standard = 0;
    std::int32_t _summer = 0;
    bool _hasSummer = false;
    YearlyMoment _summerBegins;
    YearlyMoment _summerEnds;
};

// One half of a zone file: numbers with the most significant byte first.
class ZoneFile
{
public:
    // Finds the newest half of the file that there is: the first has times of 32 bits, the second of 64.
    bool Read(std::string_view bytes)
    {
        if (!ReadHeader(bytes, 4))
            return false;
        const char version = bytes[4];
        if (version == '\0')
            return true;
        bytes.remove_prefix(_size);
        if (!ReadHeader(bytes, 8))
            return false;
        return ReadFooter(bytes.substr(_size));
    }

    bool CountsLeapSeconds() const { return _leapSeconds != 0; }
    std::size_t GetTransitionCount() const { return _transitions; }
    std::string_view GetRule() const { return _rule; }

    std::int64_t GetTransition(std::size_t i) const { return Number(_times + i * _timeSize, _timeSize); }
    std::size_t GetTransitionType(std::size_t i) const { return static_cast<unsigned char>(_bytes[_indices + i]); }
    std::size_t GetTypeCount() const { return _types; }
    std::int32_t GetOffset(std::size_t type) const
    {
        return static_cast<std::int32_t>(Number(_typeInfos + type * typeSize, 4));
    }
    bool IsSummer(std::size_t type) const { return _bytes[_typeInfos + type * typeSize + 4] != 0; }

private:
    static constexpr std::size_t headerSize = 44;
    static constexpr std::size_t typeSize = 6;

    std::int64_t Number(std::size_t at, std::size_t size) const
    {
        std::uint64_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value = value << 8 | static_cast<unsigned char>(_bytes[at + i]);
        return size == 8 ? static_cast<std::int64_t>(value)
                         : static_cast<std::int32_t>(static_cast<std::uint32_t>(value));
    }

    bool ReadHeader(std::string_view bytes, std::size_t timeSize)
    {
        if (bytes.size() < headerSize || bytes.substr(0, 4) != "TZif")
            return false;
        _bytes = bytes;
        _timeSize = timeSize;
        std::size_t counts[6];
        for (std::size_t i = 0; i < 6; ++i)
        {
            counts[i] = static_cast<std::uint32_t>(Number(20 + 4 * i, 4));
            if (counts[i] > bytes.size())
                return false;
        }
        const auto [utc, standard, leap, times, types, names] = std::to_array(counts);
        _leapSeconds = leap;
        _transitions = times;
        _types = types;
        _times = headerSize;
        _indices = _times + times * timeSize;
        _typeInfos = _indices + times;
        _size = _typeInfos + types * typeSize + names + leap * (timeSize + 4) + standard + utc;
        return types > 0 && _size <= bytes.size() && TypesAreKnown();
    }

    bool TypesAreKnown() const
    {
        for (std::size_t i = 0; i < _transitions; ++i)
            if (GetTransitionType(i) >= _types || (i > 0 && GetTransition(i) <= GetTransition(i - 1)))
                return false;
        constexpr std::int32_t largestOffset = 26 * 3'600;
        for (std::size_t i = 0; i < _types; ++i)
            if (GetOffset(i) < -largestOffset || GetOffset(i) > largestOffset)
                return false;
        return true;
    }

    bool ReadFooter(std::string_view text)
    {
        if (text.empty() || text.front() != '\n')
            return false;
        const std::size_t end = text.find('\n', 1);
        if (end == std::string_view::npos)
            return false;
        _rule = text.substr(1, end - 1);
        return true;
    }

    std::string_view _bytes;
    std::string_view _rule;
    std::size_t _timeSize = 0;
    std::size_t _leapSeconds = 0;
    std::size_t _transitions = 0;
    std::size_t _types = 0;
    std::size_t _times = 0;
    std::size_t _indices = 0;
    std::size_t _typeInfos = 0;
    std::size_t _size = 0;
};
}  // namespace

// From `second` on, `offset` holds. Called in order of time.
void nxTimeZone::_Add(std::int64_t second, std::int32_t offset)
{
    const std::int64_t begin = std::max(second, FirstSecond);
    if (_count > 0 && _begins[_count - 1] == begin)
        --_count;
    const bool changes = _count == 0 || _offsets[_count - 1] != offset;
    if (!changes || begin >= EndSecond || _count == _capacity)
        return;
    _begins[_count] = begin;
    _offsets[_count] = offset;
    ++_count;
}

template <class Rule>
void nxTimeZone::_AddRule(const Rule& rule, std::int64_t begin)
{
    if (begin < EndSecond)
        rule.Unroll(std::max(begin, FirstSecond),
                    [this](std::int64_t second, std::int32_t offset) { _Add(second, offset); });
}

bool nxTimeZone::_Finish()
{
    _begins[_count] = EndSecond;
    std::size_t i = 0;
    for (std::size_t bucket = 0; bucket < _bucketCount; ++bucket)
    {
        const std::int64_t second = _firstBucketSecond + (static_cast<std::int64_t>(bucket) << _bucketShift);
        while (i + 1 < _count && second >= _begins[i + 1])
            ++i;
        _buckets[bucket] = static_cast<std::uint16_t>(i);
    }
    return _count < _capacity;  // a full table may lack something
}

bool nxTimeZone::ReadFile(std::string_view bytes)
{
    ZoneFile file;
    if (!file.Read(bytes) || file.CountsLeapSeconds())
        return false;
    const std::size_t transitions = file.GetTransitionCount();
    Rule rule;
    const bool hasRule = !file.GetRule().empty() && transitions != 0;
    if (hasRule && !rule.Read(file.GetRule()))
        return false;

    // Before the first transition the first offset that is not of summer time holds.
    std::size_t early = 0;
    while (early < file.GetTypeCount() && file.IsSummer(early))
        ++early;
    _count = 0;
    _Add(FirstSecond, file.GetOffset(early < file.GetTypeCount() ? early : 0));
    for (std::size_t i = 0; i < transitions; ++i)
        _Add(file.GetTransition(i), file.GetOffset(file.GetTransitionType(i)));
    if (hasRule)
        _AddRule(rule, file.GetTransition(transitions - 1));
    return _Finish();
}

bool nxTimeZone::ReadRule(std::string_view text)
{
    Rule rule;
    if (!rule.Read(text))
        return false;
    _count = 0;
    _AddRule(rule, FirstSecond);
    return _Finish();
}

bool nxTimeZone::Load(const char* setting, std::span<char> scratch)
{
    constexpr const char* machine = "/etc/localtime";
    constexpr const char* database = "/usr/share/zoneinfo";
    constexpr std::size_t longestPath = 1'024;

    std::string_view name = setting == nullptr ? machine : setting;
    if (!name.empty() && name.front() == ':')
        name.remove_prefix(1);
    if (name.empty())
        return ReadRule("UTC0");
    const bool isSecure = nxEnvironment::IsSecureExecution();
    // What the C library refuses to open for a caller with fewer rights than the program, we do not open either.
    if (isSecure && setting != nullptr && (name.front() == '/' || name.find("..") != std::string_view::npos))
        return false;
    char path[longestPath];
    std::string_view directory;
    if (name.front() != '/')
        directory = !isSecure && nxEnvironment::Copy("TZDIR", path) == 0 && path[0] != '\0' ? path : database;
    if (directory.size() + name.size() + 2 > sizeof path)
        return false;
    char* end = path + directory.size();
    if (directory.data() != path)
        std::copy(directory.begin(), directory.end(), path);
    *end++ = '/';
    *std::copy(name.begin(), name.end(), end) = '\0';
    std::size_t size = 0;
    if (nxFile::ReadAll(path, scratch, size) == 0)
        return ReadFile({scratch.data(), size});
    return ReadRule(name);
}
