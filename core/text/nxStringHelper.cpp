// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxStringHelper.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "core/enum/nxCaseSensitivityEnum.h"

namespace
{
constexpr const char* trimmed = " \t\n\r";
}  // namespace

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, bool& value)
{
    value = text == "TRUE";
    return value || text == "FALSE" ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
}

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, std::string& value)
{
    value = text;
    return nxErrorEnum();
}

nxErrorEnum nxStringHelper::SetFromString(const std::string& text, nxEnum& value)
{
    return value.SetFromShortDescriptionString(text) ? nxErrorEnum() : nxErrorEnum(NX_ERR_INVALID_PARAMETER);
}

nxErrorEnum nxStringHelper::SetFromStringExact(std::string_view text, bool& value)
{
    const bool isTrue = text == "TRUE";
    if (!isTrue && text != "FALSE")
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    value = isTrue;
    return nxErrorEnum();
}

nxErrorEnum nxStringHelper::SetFromStringExact(std::string_view text, nxEnum& value)
{
    const unsigned before = value.GetValue();
    if (value.SetFromShortDescriptionString(text))
        return nxErrorEnum();
    value = before;
    return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
}

void nxStringHelper::AppendAsString(std::string& out, const char* value)
{
    if (value != nullptr)
        out.append(value);
}

std::string nxStringHelper::GetAsString(const char* value) { return value != nullptr ? value : std::string(); }

void nxStringHelper::AppendAsString(std::string& out, const nxEnum& value) { out.append(value.GetShortDescription()); }

std::string nxStringHelper::GetAsString(const nxEnum& value) { return value.GetShortDescription(); }

void nxStringHelper::PadLeft(std::string& s, const unsigned int& width, const char& fill)
{
    // The arguments may refer into the string.
    const char character = fill;
    if (s.size() < width)
        s.insert(0, width - s.size(), character);
}

void nxStringHelper::PadRight(std::string& s, const unsigned int& width, const char& fill)
{
    const char character = fill;
    if (s.size() < width)
        s.append(width - s.size(), character);
}

void nxStringHelper::Strip(std::string& s, char c) { s.erase(std::remove(s.begin(), s.end(), c), s.end()); }

void nxStringHelper::RightTrim(std::string& s) { s.erase(s.find_last_not_of(trimmed) + 1); }

void nxStringHelper::LeftTrim(std::string& s) { s.erase(0, s.find_first_not_of(trimmed)); }

void nxStringHelper::RightTrim(std::string& s, const std::string& chars) { s.erase(s.find_last_not_of(chars) + 1); }

std::string nxStringHelper::GetRightTrimmed(const std::string& s)
{
    return s.substr(0, s.find_last_not_of(trimmed) + 1);
}

std::string nxStringHelper::GetLeftTrimmed(const std::string& s)
{
    return s.substr(std::min(s.find_first_not_of(trimmed), s.size()));
}

void nxStringHelper::Replace(std::string& s, const std::string& what, const std::string& with)
{
    if (what.empty())
        return;
    std::size_t hit = s.find(what);
    if (hit == std::string::npos)
        return;
    // Built beside the old text: linear however many hits there are, and the arguments may be the string itself.
    std::string result;
    result.reserve(s.size());
    std::size_t position = 0;
    for (; hit != std::string::npos; hit = s.find(what, position))
    {
        result.append(s, position, hit - position).append(with);
        position = hit + what.size();
    }
    result.append(s, position, std::string::npos);
    s = std::move(result);
}

void nxStringHelper::ToUpper(std::string& s)
{
    for (char& c : s)
        c = _ToUpper(c);
}

void nxStringHelper::ToLower(std::string& s)
{
    for (char& c : s)
        c = _ToLower(c);
}

std::string nxStringHelper::GetUppercaseAndUnderscoreFormatted(const std::string& text)
{
    std::string result;
    result.reserve(text.size() + text.size() / 4);
    char previous = '\0';
    for (const char c : text)
    {
        if (IsUppercase(c) && IsLowercase(previous))
            result.push_back('_');
        result.push_back(_ToUpper(c));
        previous = c;
    }
    return result;
}

bool nxStringHelper::Compare(const std::string& a, const std::string& b, const nxCaseSensitivityEnum& sensitivity)
{
    if (sensitivity == CASE_SENSITIVE)
        return a == b;
    return sensitivity == CASE_INSENSITIVE && std::equal(a.begin(), a.end(), b.begin(), b.end(),
                                                         [](char x, char y) { return _ToUpper(x) == _ToUpper(y); });
}

int nxStringHelper::CompareAlphabetically(const std::string& a, const std::string& b,
                                          const nxCaseSensitivityEnum& sensitivity)
{
    if (sensitivity == CASE_SENSITIVE)
    {
        const int order = std::strcmp(a.c_str(), b.c_str());
        return (order > 0) - (order < 0);
    }
    if (!(sensitivity == CASE_INSENSITIVE))
        return 0;
    const char* left = a.c_str();
    const char* right = b.c_str();
    while (*left != '\0' && _ToLower(*left) == _ToLower(*right))
    {
        ++left;
        ++right;
    }
    return static_cast<unsigned char>(_ToLower(*left)) - static_cast<unsigned char>(_ToLower(*right));
}
