#include "core/text/nxDoubleValueWrapper.h"

#include <ostream>

#include "core/text/nxStringHelper.h"

nxErrorEnum nxDoubleValueWrapper::SetFromString(const std::string& text)
{
    nxErrorEnum error = nxStringHelper::SetFromString(text, _value, '.');
    if (!error.IsOK())
        SetNull();
    return error;
}

nxErrorEnum nxDoubleValueWrapper::SetFromString(const char* text)
{
    return SetFromString(nxStringHelper::GetAsString(text));
}

std::string nxDoubleValueWrapper::GetAsString() const
{
    return IsValid() ? nxStringHelper::GetAsString(_value) : std::string();
}

std::string nxDoubleValueWrapper::GetAsLogString() const
{
    return IsNoChange() ? "NO_CHANGE" : nxStringHelper::GetAsString(_value);
}

void nxDoubleValueWrapper::AppendAsString(std::string& out) const { out.append(GetAsString()); }

void nxDoubleValueWrapper::AppendAsLogString(std::string& out) const { out.append(GetAsLogString()); }

std::ostream& operator<<(std::ostream& stream, const nxDoubleValueWrapper& value)
{
    return stream << value.GetAsLogString();
}

void nxStringHelper::AppendAsString(std::string& out, const nxDoubleValueWrapper& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDoubleValueWrapper& value) { return value.GetAsString(); }
