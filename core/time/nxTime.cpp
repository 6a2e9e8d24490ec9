// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxTime.h"

#include <ostream>
#include <string_view>

#include "core/text/inline/nxDigits.h"
#include "core/text/nxStringHelper.h"
#include "core/time/internal/nxTimeText.h"

namespace
{
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
                            nxTimeText::ReadDigits(view.substr(0, 2), hours) &&
                            nxTimeText::ReadDigits(view.substr(step, 2), minutes) &&
                            nxTimeText::ReadDigits(view.substr(2 * step, 2), seconds) &&
                            nxTimeText::ReadFraction(view.substr(2 * step + 2), nanoseconds);
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
