// SPDX-License-Identifier: Apache-2.0
// Time stamps of any moment against the C library, and zones from any bytes.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <string_view>

#include "core/platform/nxTimeZone.h"
#include "core/time/nxTimeStamp.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

// The zone of the process takes turns, so that texts are also those after a change of zone.
void SetZone(unsigned char choice)
{
    static constexpr const char* zones[] = {"UTC0", "Europe/London", "Australia/Lord_Howe", "ABC3DEF,J100/3,J300/3"};
    static unsigned char last = 255;
    if (last == choice % 4)
        return;
    last = choice % 4;
    setenv("TZ", zones[last], 1);
    tzset();
}

void PrintAny(std::string_view bytes)
{
    std::int64_t second = 0;
    std::uint32_t nanoseconds = 0;
    if (bytes.size() < 1 + sizeof second + sizeof nanoseconds)
        return;
    SetZone(static_cast<unsigned char>(bytes[0]));
    std::memcpy(&second, bytes.data() + 1, sizeof second);
    std::memcpy(&nanoseconds, bytes.data() + 1 + sizeof second, sizeof nanoseconds);
    char text[nxTimeStamp::TextSize] = "";
    const unsigned written = nxTimeStamp(second, nanoseconds).GetAsStringFast(text, sizeof text);
    const std::time_t moment = second;
    std::tm fields{};
    if (localtime_r(&moment, &fields) == nullptr)
        return Require(written == 0 && text[0] == '\0');
    char expected[32];
    const unsigned microseconds = nanoseconds % 1'000'000'000 / 1'000;
    std::snprintf(expected, sizeof expected, "%02d:%02d:%02d.%03u.%03u", fields.tm_hour % 100, fields.tm_min % 100,
                  fields.tm_sec % 100, microseconds / 1'000, microseconds % 1'000);
    Require(written == nxTimeStamp::TextSize && std::strcmp(text + 8, expected) == 0);
}

void Search(const nxTimeZone& zone)
{
    Require(zone.GetSpanCount() > 0 && zone.GetSpan(0).begin == nxTimeZone::FirstSecond);
    for (std::size_t i = 0; i < zone.GetSpanCount(); ++i)
    {
        const nxTimeZoneSpan span = zone.GetSpan(i);
        Require(span.begin < span.end && zone.Find(span.begin) == span && zone.Find(span.end - 1) == span);
    }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    PrintAny(bytes);
    static nxTimeZone zone;
    if (zone.ReadRule(bytes))
        Search(zone);
    if (zone.ReadFile(bytes))
        Search(zone);
    return 0;
}
