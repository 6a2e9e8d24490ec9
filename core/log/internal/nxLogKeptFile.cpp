// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogKeptFile.h"

#include <charconv>
#include <system_error>

#include "core/time/nxCalendar.h"

namespace
{
constexpr std::string_view endings[] = {".log", ".log.gz", ".log.zst", ".log.xz"};

// Reads plain digits to the end, without a leading zero where the length is free.
bool ReadDigits(std::string_view text, std::size_t digits, std::uint32_t& number)
{
    if (text.empty() || (digits != 0 ? text.size() != digits : text.front() == '0'))
        return false;
    if (text.find_first_not_of("0123456789") != std::string_view::npos)
        return false;
    return std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
}

std::string GetDigits(std::uint32_t number, std::size_t digits)
{
    std::string text = std::to_string(number);
    return std::string(digits > text.size() ? digits - text.size() : 0, '0').append(text);
}

// Takes the text up to the next underline.
std::string_view TakePart(std::string_view& text)
{
    const std::size_t end = text.find('_');
    const std::string_view part = text.substr(0, end);
    text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    return part;
}
}  // namespace

bool nxLogKeptFile::ReadDay(std::string_view folder, std::int32_t& day)
{
    std::uint32_t dayOfMonth = 0, month = 1, year = 0;
    if (folder.size() != 9 || !ReadDigits(folder.substr(0, 2), 2, dayOfMonth) || !ReadDigits(folder.substr(5), 4, year))
        return false;
    while (month <= 12 && folder.substr(2, 3) != nxCalendar::GetMonthName(month))
        ++month;
    if (!nxCalendar::IsDate(year, month, dayOfMonth))
        return false;
    day = nxCalendar::GetDayNumber(year, month, dayOfMonth);
    return true;
}

std::string nxLogKeptFile::GetFolder() const
{
    unsigned year = 1, month = 1, dayOfMonth = 1;
    nxCalendar::GetDateOfDay(day, year, month, dayOfMonth);
    return GetDigits(dayOfMonth, 2).append(nxCalendar::GetMonthName(month)).append(GetDigits(year, 4));
}

bool nxLogKeptFile::ReadName(std::string_view application, std::string_view name)
{
    const std::size_t end = name.find('.');
    if (!name.starts_with(application) || end == std::string_view::npos)
        return false;
    std::size_t found = 0;
    while (found < std::size(endings) && name.substr(end) != endings[found])
        ++found;
    if (found == std::size(endings))
        return false;
    form = static_cast<nxLogFileForm>(found);
    std::string_view rest = name.substr(0, end).substr(application.size());
    const bool hasParts =
        TakePart(rest).empty() && ReadDigits(TakePart(rest), 6, start) && ReadDigits(TakePart(rest), 0, process);
    return hasParts && ReadDigits(rest, 0, sequence);
}

std::string nxLogKeptFile::GetName(std::string_view application) const { return GetNameAs(application, form); }

std::string nxLogKeptFile::GetNameAs(std::string_view application, nxLogFileForm other) const
{
    std::string name(application);
    name.append("_").append(GetDigits(start, 6)).append("_").append(std::to_string(process));
    name.append("_").append(std::to_string(sequence)).append(endings[static_cast<std::size_t>(other)]);
    return name;
}
