// SPDX-License-Identifier: Apache-2.0
#include "Day.h"

#include <charconv>
#include <chrono>
#include <ctime>

namespace nxtick
{
namespace
{
// A number of digits alone; -1 for any other text.
int ReadDigits(std::string_view text)
{
    int number = -1;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    return error == std::errc() && stop == text.data() + text.size() && text.front() != '-' ? number : -1;
}
}  // namespace

bool IsDay(std::string_view text)
{
    if (text.size() != 10 || text[4] != '-' || text[7] != '-')
        return false;
    const int year = ReadDigits(text.substr(0, 4));
    const int month = ReadDigits(text.substr(5, 2));
    const int day = ReadDigits(text.substr(8));
    return year >= 0 && month >= 0 && day >= 0 &&
           std::chrono::year_month_day(std::chrono::year(year), std::chrono::month(static_cast<unsigned>(month)),
                                       std::chrono::day(static_cast<unsigned>(day)))
               .ok();
}

std::string Today()
{
    const std::time_t now = std::time(nullptr);
    std::tm local{};
    char text[16];
    if (::localtime_r(&now, &local) == nullptr)
        return "";
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%d", &local));
}
}  // namespace nxtick
