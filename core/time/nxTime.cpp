// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxTime.h"

#include <cstdint>
#include <ostream>
#include <string_view>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"

namespace
{
// Reads a text that must consist of digits.
bool ReadDigits(std::string_view digits, unsigned& value)
{
    std::uint64_t number = 0;
    if (!nxDigits::Parse(digits.data(), digits.data() + digits.size(), number))
        return false;
    value = static_cast<unsigned>(number);
    return true;
}

// Reads ".5" as 500,000,000 nanoseconds and an empty text as 0.
bool ReadFraction(std::string_view text, unsigned& nanoseconds)
{
    nanoseconds = 0;
    if (text.empty())
        return true;
    if (text.front() != '.' || text.size() > 10 || !ReadDigits(text.substr(1), nanoseconds))
        return false;
    for (std::size_t digits = text.size() - 1; digits < 9; ++digits)
        nanoseconds *= 10;
    return true;
}

// Writes the fraction as milliseconds, microseconds or nanoseconds: the shortest that is exact.
char* WriteFraction(char* out, unsigned nanoseconds)
{
    if (nanoseconds == 0)
        return out;
    *out++ = '.';
    out = nxDigits::WriteFixed<3>(out, nanoseconds / 1'000'000);
    if (nanoseconds % 1'000'000 != 0)
        out = nxDigits::WriteFixed<3>(out, nanoseconds / 1'000 % 1'000);
    if (nanoseconds % 1'000 != 0)
        out = nxDigits::WriteFixed<3>(out, nanoseconds % 1'000);
    return out;
}
}  // namespace

nxErrorEnum nxTime::SetFromString(const std::string& text)
{
    const std::string_view view(text);
    const bool compact = view.size() == 6;
    const std::size_t step = compact ? 2 : 3;
    unsigned hours = 0;
    unsigned minutes = 0;
    unsigned seconds = 0;
    unsigned nanoseconds = 0;
    const bool wellFormed = (compact || (view.size() >= 8 && view[2] == ':' && view[5] == ':')) &&
                            ReadDigits(view.substr(0, 2), hours) && ReadDigits(view.substr(step, 2), minutes) &&
                            ReadDigits(view.substr(2 * step, 2), seconds) &&
                            ReadFraction(view.substr(2 * step + 2), nanoseconds);
    const nxTime time(hours, minutes, seconds, nanoseconds);
    if (!wellFormed || time.IsNull())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = time;
    return nxErrorEnum();
}

nxErrorEnum nxTime::SetFromString(const char* text) { return SetFromString(nxStringHelper::GetAsString(text)); }

void nxTime::AppendAsString(std::string& out) const
{
    if (IsNull())
        return;
    char text[18];
    char* end = nxDigits::WriteFixed<2>(text, GetHours());
    *end++ = ':';
    end = nxDigits::WriteFixed<2>(end, GetMinutes());
    *end++ = ':';
    end = nxDigits::WriteFixed<2>(end, GetSeconds());
    end = WriteFraction(end, GetNanoseconds());
    out.append(text, end);
}

std::string nxTime::GetAsString() const
{
    std::string text;
    AppendAsString(text);
    return text;
}

void nxTime::AppendAsLogString(std::string& out) const
{
    if (IsNull())
        out.append("NULL");
    else
        AppendAsString(out);
}

std::string nxTime::GetAsLogString() const
{
    std::string text;
    AppendAsLogString(text);
    return text;
}

std::ostream& operator<<(std::ostream& stream, nxTime time) { return stream << time.GetAsLogString(); }
