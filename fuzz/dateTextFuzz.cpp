// SPDX-License-Identifier: Apache-2.0
// Dates, times of day, money and patterns: what is accepted comes back the same, what is refused changes nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "core/numeric/nxMoney.h"
#include "core/time/nxDate.h"
#include "core/time/nxDateTime.h"
#include "core/time/nxTime.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckDate(const std::string& text)
{
    nxDate date(1999, 12, 31);
    if (!date.SetFromString(text).IsOK())
        return Require(date == nxDate(1999, 12, 31));
    Require(date.IsValid() && date.GetAsString() == text);
    Require(nxDate(date.GetYear(), date.GetMonth(), date.GetDay()) == date);
    Require(nxDate::GetFromDayNumber(date.GetDayNumber()) == date);
    Require(date.GetDayOfWeek() >= 1 && date.GetDayOfWeek() <= 7);
}

void CheckTime(const std::string& text)
{
    nxTime time(1, 2, 3);
    if (!time.SetFromString(text).IsOK())
        return Require(time == nxTime(1, 2, 3));
    nxTime back;
    Require(time.IsValid() && back.SetFromString(time.GetAsString()).IsOK() && back == time);
    Require(nxTime(time.GetHours(), time.GetMinutes(), time.GetSeconds(), time.GetNanoseconds()) == time);
}

void CheckMoney(const std::string& text)
{
    nxMoney money;
    if (!money.SetFromString(text, '.').IsOK())
        return Require(money.IsNull());
    Require(money.IsValid() && money.GetCurrency().size() == 3);
    nxMoney back;
    Require(back.SetFromString(money.GetAsString('.'), '.').IsOK() && back.GetCurrency() == money.GetCurrency());
}

void CheckMoment(const std::string& bytes)
{
    long long seconds = 0;
    std::memcpy(&seconds, bytes.data(), bytes.size() < sizeof seconds ? bytes.size() : sizeof seconds);
    for (const long long moment : {seconds, seconds % 300'000'000'000})
    {
        const nxDateTime dateTime(moment, static_cast<unsigned>(seconds));
        Require(dateTime.IsNull() == dateTime.GetAsString().empty());
        Require(dateTime.IsNull() || dateTime.GetAsString().size() == 20);
        Require(!dateTime.IsTimeOfDayOnly());
        // The text is part of the pattern here; each directive gives four characters at most.
        Require(dateTime.GetAsString(bytes).size() <= 2 * bytes.size());
    }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckDate(text);
    CheckTime(text);
    CheckMoney(text);
    CheckMoment(text);
    return 0;
}
