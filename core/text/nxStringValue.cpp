// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxStringValue.h"

#include <ostream>

#include "core/text/nxStringHelper.h"

const nxStringValue& nxStringValue::GetNullInstance()
{
    // Never destroyed, because destructors of other objects may still use it.
    static const nxStringValue* const instance = new nxStringValue(nxNullInitalizer{});
    return *instance;
}

const nxStringValue& nxStringValue::GetNoChangeInstance()
{
    static const nxStringValue* const instance = new nxStringValue(nxNoChangeInitalizer{});
    return *instance;
}

void nxStringValue::SetNull()
{
    _text.clear();
    _status = NX_VALUE_STATUS_NULL;
}

void nxStringValue::SetNoChange()
{
    _text.clear();
    _status = NX_VALUE_STATUS_NO_CHANGE;
}

nxErrorEnum nxStringValue::SetFromString(const std::string& text)
{
    _text = text;
    _status = NX_VALUE_STATUS_VALID;
    return nxErrorEnum();
}

nxErrorEnum nxStringValue::SetFromString(const char* text) { return SetFromString(nxStringHelper::GetAsString(text)); }

void nxStringValue::AppendAsString(std::string& out) const { out.append(_text); }

void nxStringValue::GetAsString(std::string& out) const { out = _text; }

void nxStringValue::AppendAsLogString(std::string& out) const
{
    if (IsNull())
        out.append("NULL");
    else if (IsNoChange())
        out.append("NO_CHANGE");
    else
        out.append(_text);
}

void nxStringValue::GetAsLogString(std::string& out) const { out = GetAsLogString(); }

std::string nxStringValue::GetAsLogString() const
{
    std::string text;
    AppendAsLogString(text);
    return text;
}

std::ostream& operator<<(std::ostream& stream, const nxStringValue& value) { return stream << value.GetAsLogString(); }
