#include "core/time/nxTimeStamp.h"

#include <cstring>
#include <ctime>
#include <ostream>

namespace
{
constexpr char monthNames[12][4] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

char* PutDigit(char* out, unsigned digit)
{
    *out = static_cast<char>('0' + digit);
    return out + 1;
}

char* PutTwo(char* out, int value)
{
    const auto number = static_cast<unsigned>(value);
    return PutDigit(PutDigit(out, number / 10 % 10), number % 10);
}

char* PutThree(char* out, unsigned value) { return PutDigit(PutTwo(out, static_cast<int>(value / 10)), value % 10); }

// A year of any sign as 0 to 99.
int YearOfCentury(int yearsSince1900)
{
    const int year = yearsSince1900 % 100;
    return year < 0 ? year + 100 : year;
}
}  // namespace

unsigned int nxTimeStamp::GetAsStringFast(char* buffer, unsigned int) const
{
    const std::time_t seconds = _seconds;
    std::tm fields{};
    if (localtime_r(&seconds, &fields) == nullptr)
        return 0;
    const unsigned microseconds = _nanoseconds % 1'000'000'000 / 1'000;
    char* out = PutTwo(buffer, fields.tm_mday);
    std::memcpy(out, monthNames[fields.tm_mon], 3);
    out = PutTwo(out + 3, YearOfCentury(fields.tm_year));
    *out++ = ' ';
    out = PutTwo(out, fields.tm_hour);
    *out++ = ':';
    out = PutTwo(out, fields.tm_min);
    *out++ = ':';
    out = PutTwo(out, fields.tm_sec);
    *out++ = '.';
    out = PutThree(out, microseconds / 1'000);
    *out++ = '.';
    out = PutThree(out, microseconds % 1'000);
    *out = '\0';
    return TextSize;
}

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
