// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxStringHelper.h"
#include "core/time/nxDate.h"
#include "core/time/nxDateTime.h"
#include "core/time/nxDateTimeSpan.h"
#include "core/time/nxTime.h"

// The operations of nxStringHelper on dates, times and spans, which are above its header and only declared there.

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxDate& value) { return value.SetFromString(text); }

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxTime& value) { return value.SetFromString(text); }

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxDateTimeSpan& value)
{
    return value.SetFromString(text);
}

void nxStringHelper::AppendAsString(std::string& out, const nxDate& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDate& value) { return value.GetAsString(); }

void nxStringHelper::AppendAsString(std::string& out, const nxTime& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxTime& value) { return value.GetAsString(); }

void nxStringHelper::AppendAsString(std::string& out, const nxDateTime& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDateTime& value) { return value.GetAsString(); }

void nxStringHelper::AppendAsString(std::string& out, const nxDateTimeSpan& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDateTimeSpan& value) { return value.GetAsString(); }
