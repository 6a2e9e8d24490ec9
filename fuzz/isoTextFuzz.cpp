// SPDX-License-Identifier: Apache-2.0
// Spans, days and date-times in the forms of ISO 8601: what is accepted comes back the same from its own text, and what
// is refused changes nothing.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "core/time/nxDateTime.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckSpan(const std::string& text)
{
    const nxDateTimeSpan before(5, 7);
    nxDateTimeSpan span = before;
    if (!span.SetFromString(text).IsOK())
        return Require(span == before);
    nxDateTimeSpan back;
    Require(span.IsValid() && back.SetFromString(span.GetAsString()).IsOK() && back == span);
    Require(back.GetAsString() == span.GetAsString() && span.GetAsString().size() <= 30);
    Require(nxDateTimeSpan::GetFromSeconds(span.GetTotalSeconds(), span.GetNanoseconds()) == span);
    Require(-(-span) == span && span - span == nxDateTimeSpan(0, 0));
}

void CheckDate(const std::string& text)
{
    const nxDate before(1999, 12, 31);
    nxDate date = before;
    if (!date.SetFromISOString(text).IsOK())
        return Require(date == before);
    Require(date.IsValid() && date.GetAsISOString() == text);
    unsigned year = 0;
    const unsigned week = date.GetISOWeek(year);
    Require(week >= 1 && week <= 53 && year >= date.GetYear() - 1 && year <= date.GetYear() + 1);
}

void CheckDateTime(const std::string& text)
{
    const nxDateTime before(1, 2, 3);
    nxDateTime dateTime = before;
    if (!dateTime.SetFromISOString(text).IsOK())
        return Require(dateTime == before);
    nxDateTime back;
    Require(dateTime.IsValid() && back.SetFromISOString(dateTime.GetAsISOString()).IsOK() && back == dateTime);
    const nxDateTime epoch(nxDate(1970, 1, 1), nxTime(0, 0, 0));
    Require(dateTime.IsTimeOfDayOnly() ? (dateTime - epoch).IsNull()
                                       : epoch.GetWithSpanAdded(dateTime - epoch) == dateTime);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    CheckSpan(text);
    CheckDate(text);
    CheckDateTime(text);
    return 0;
}
