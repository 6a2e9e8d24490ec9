// SPDX-License-Identifier: Apache-2.0
#include "core/time/nxTime.h"

#include <ostream>

#include "core/text/nxStringHelper.h"
#include "core/time/internal/nxTimeText.h"

nxErrorEnum nxTime::SetFromString(const std::string& text)
{
    const nxTimeText::Time fields = text.size() == 6 ? nxTimeText::ReadFields(text, 2) : nxTimeText::ReadTime(text);
    const nxTime time(fields.hours, fields.minutes, fields.seconds, fields.nanoseconds);
    if (time.IsNull())
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    *this = time;
    return nxErrorEnum();
}

nxErrorEnum nxTime::SetFromString(const char* text) { return SetFromString(nxStringHelper::GetAsString(text)); }

void nxTime::AppendAsString(std::string& out) const
{
    if (IsNull())
        return;
    char text[nxTimeText::MaxTimeSize];
    const char* const end = nxTimeText::WriteTime(text, {GetHours(), GetMinutes(), GetSeconds(), GetNanoseconds()});
    out.append(text, static_cast<std::size_t>(end - text));
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
