// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxTimeStamp.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <ostream>
#include <string_view>

#include "core/platform/nxLocalZone.h"
#include "core/time/internal/nxFractionText.h"
#include "core/time/nxCalendar.h"
#include "core/time/nxDateTime.h"

namespace
{
static_assert(std::endian::native == std::endian::little, "texts are put together in words, first character lowest");

// "00" to "99", each as the word that these two characters are in memory.
constexpr auto twoDigits = []
{
    std::array<std::uint16_t, 100> words{};
    for (unsigned i = 0; i < 100; ++i)
        words[i] = static_cast<std::uint16_t>(('0' + i / 10) | ('0' + i % 10) << 8);
    return words;
}();

constexpr std::uint64_t Character(char character, int position)
{
    return static_cast<std::uint64_t>(static_cast<unsigned char>(character)) << (8 * position);
}

// "Jan" to "Dec", and a blank, at their places in the first eight characters.
constexpr auto monthNames = []
{
    std::array<std::uint64_t, 12> words{};
    for (unsigned i = 0; i < 12; ++i)
    {
        const std::string_view name = nxCalendar::GetMonthName(i + 1);
        words[i] = Character(name[0], 2) | Character(name[1], 3) | Character(name[2], 4) | Character(' ', 7);
    }
    return words;
}();

// The text of the minute that this thread printed last.
struct MinuteText
{
    std::int64_t begin;    // the first second with this text
    std::uint64_t length;  // the number of such seconds; 0 at first
    std::uint64_t date;    // "05Mar24 "
    std::uint64_t time;    // "09:07:" and two NULs
    nxLocalZoneMark mark;
    unsigned firstSecond;
    int trust;  // the number of texts until the zone is checked again

    bool Holds(long long second) const
    {
        return static_cast<std::uint64_t>(second) - static_cast<std::uint64_t>(begin) < length;
    }
    bool MarkIsOld() const { return mark != nxLocalZoneMark::Now(); }

    void Set(const nxLocalMinute& minute)
    {
        begin = minute.begin;
        length = minute.length;
        firstSecond = minute.firstSecond;
        date =
            twoDigits[minute.day] | monthNames[minute.month - 1] | std::uint64_t{twoDigits[minute.yearOfCentury]} << 40;
        time = twoDigits[minute.hour] | Character(':', 2) | std::uint64_t{twoDigits[minute.minute]} << 24 |
               Character(':', 5);
    }

    unsigned Print(long long second, unsigned nanoseconds, char* buffer) const
    {
        if (nanoseconds >= 1'000'000'000) [[unlikely]]
            nanoseconds %= 1'000'000'000;
        const std::uint16_t seconds = twoDigits[static_cast<unsigned>(second - begin) + firstSecond];
        std::memcpy(buffer, &date, 8);
        std::memcpy(buffer + 8, &time, 8);
        std::memcpy(buffer + 14, &seconds, 2);
        nxFractionText::Write(buffer + 16, nanoseconds);
        buffer[24] = '\0';
        return nxTimeStamp::TextSize;
    }
};

// Limits the number of texts that a thread prints in the old zone after a change of the process's zone that the mark
// does not show.
constexpr int textsBetweenChecks = 256;

[[gnu::tls_model("initial-exec")]] constinit thread_local MinuteText lastMinute{};

// Out of line, so that the usual case need not save registers.
[[gnu::noinline]] unsigned PrintAfterCheck(long long second, unsigned nanoseconds, char* buffer)
{
    MinuteText& last = lastMinute;
    nxLocalMinute minute;
    last.trust = 0;
    if (!nxLocalZone::FindAndCheck(second, minute))
        return 0;
    last.Set(minute);
    last.mark = nxLocalZoneMark::Now();
    last.trust = textsBetweenChecks - 1;
    return last.Print(second, nanoseconds, buffer);
}

[[gnu::noinline]] unsigned PrintOtherMinute(long long second, unsigned nanoseconds, char* buffer)
{
    MinuteText& last = lastMinute;
    nxLocalMinute minute;
    if (last.MarkIsOld() || --last.trust < 0 || !nxLocalZone::Find(second, minute)) [[unlikely]]
        return PrintAfterCheck(second, nanoseconds, buffer);
    last.Set(minute);
    return last.Print(second, nanoseconds, buffer);
}
}  // namespace

unsigned int nxTimeStamp::GetAsStringFast(char* buffer, unsigned int) const
{
    MinuteText& last = lastMinute;
    if (!last.Holds(_seconds)) [[unlikely]]
        return PrintOtherMinute(_seconds, _nanoseconds, buffer);
    if (last.MarkIsOld() || --last.trust < 0) [[unlikely]]
        return PrintAfterCheck(_seconds, _nanoseconds, buffer);
    return last.Print(_seconds, _nanoseconds, buffer);
}

nxErrorEnum nxTimeStamp::AddExact(nxDateTimeSpan span)
{
    if (span.IsNull())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    constexpr long long perSecond = nxDateTimeSpan::NanosecondsPerSecond;
    // A second is borrowed, so that the sum is not negative.
    const long long nanoseconds = perSecond + _nanoseconds + span.GetNanoseconds();
    long long seconds = 0;
    if (__builtin_add_overflow(_seconds, span.GetTotalSeconds() + nanoseconds / perSecond - 1, &seconds))
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    *this = nxTimeStamp(seconds, static_cast<unsigned>(nanoseconds % perSecond));
    return nxErrorEnum();
}

nxDateTime nxTimeStamp::GetAsDateTime() const { return nxDateTime(_seconds, _nanoseconds); }

std::string nxTimeStamp::GetAsString() const
{
    char text[TextSize];
    const unsigned written = GetAsStringFast(text, sizeof text);
    return written == 0 ? std::string() : std::string(text, 20);
}

std::ostream& operator<<(std::ostream& stream, const nxTimeStamp& stamp)
{
    char text[nxTimeStamp::TextSize];
    const unsigned written = stamp.GetAsStringFast(text, sizeof text);
    return written == 0 ? stream : stream << text;
}
