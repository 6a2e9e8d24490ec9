// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogLevelRules.h"

#include <algorithm>
#include <tuple>
#include <utility>

#include "core/text/nxPrintableText.h"

namespace
{
constexpr std::string_view blanksOfRules = " \t\r";

std::string_view TrimRule(std::string_view text)
{
    const std::size_t begin = std::min(text.find_first_not_of(blanksOfRules), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(blanksOfRules) + 1);
}

nxEnumValue ReadLevel(std::string_view text)
{
    for (const nxLogLevelEnum level : nxLogLevelEnum::GetRegisteredValues())
        if (text == level.GetShortDescription())
            return level.GetEnumValue();
    return NX_ENUM_UNDEFINED;
}

// How well a rule fits a path. A rule for a file fits better than one for a folder, the longer text better than the shorter,
// and of equals the one that fits nearer to the path's end.
struct RuleFit
{
    bool isFile = false;
    std::size_t size = 0;
    std::size_t end = 0;  // in the path; 0 when the rule does not fit

    bool IsBetterThan(const RuleFit& other) const
    {
        return std::tie(isFile, size, end) > std::tie(other.isFile, other.size, other.end);
    }
};

bool BeginsPart(std::string_view path, std::size_t position) { return position == 0 || path[position - 1] == '/'; }

RuleFit FitRule(std::string_view where, std::string_view path)
{
    const bool isFile = where.back() != '/';
    std::size_t at = isFile && path.size() >= where.size() ? path.size() - where.size() : path.size();
    for (at = path.rfind(where, at); at != std::string_view::npos; at = path.rfind(where, at - 1))
    {
        const std::size_t end = at + where.size();
        if (BeginsPart(path, at) && (!isFile || end == path.size()))
            return {isFile, where.size(), end};
        if (at == 0)
            break;
    }
    return {};
}
}  // namespace

nxErrorEnum nxLogLevelRules::Read(std::string_view text, nxLogLevelRules& rules, std::string& fault)
{
    nxLogLevelRules read;
    for (std::size_t line = 1; !text.empty(); ++line)
    {
        const std::size_t lineEnd = std::min(text.find('\n'), text.size());
        std::string_view entries = text.substr(0, std::min(text.find('#'), lineEnd));
        text.remove_prefix(std::min(lineEnd + 1, text.size()));
        while (!entries.empty())
        {
            const std::size_t end = std::min(entries.find(','), entries.size());
            const nxErrorEnum error = read._ReadEntry(TrimRule(entries.substr(0, end)), fault);
            if (!error.IsOK())
            {
                fault.insert(0, "line " + std::to_string(line) + ": ");
                return error;
            }
            entries.remove_prefix(std::min(end + 1, entries.size()));
        }
    }
    rules = std::move(read);
    return nxErrorEnum();
}

// An empty entry says nothing.
nxErrorEnum nxLogLevelRules::_ReadEntry(std::string_view entry, std::string& fault)
{
    if (entry.empty())
        return nxErrorEnum();
    const std::size_t equals = entry.rfind('=');
    const bool isForAll = equals == std::string_view::npos || TrimRule(entry.substr(0, equals)) == "level";
    const std::string_view name = equals == std::string_view::npos ? entry : TrimRule(entry.substr(equals + 1));
    const nxEnumValue level = ReadLevel(name);
    if (level == NX_ENUM_UNDEFINED)
    {
        fault = nxPrintableText::GetQuoted(name) + " is no level. Levels are DBG, INF, PB1, PB2, PB3, WRN, ERR and FTL";
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
    if (!isForAll)
        return Set(TrimRule(entry.substr(0, equals)), level, fault);
    _levelForAll = level;
    return nxErrorEnum();
}

nxErrorEnum nxLogLevelRules::Set(std::string_view where, nxEnumValue level, std::string& fault)
{
    if (!nxLogLevelEnum(level).IsSpecificTypeForInstance() || where.find_first_not_of('/') == std::string_view::npos ||
        where.size() > LongestWhere || where.find_first_of("\n,#") != std::string_view::npos ||
        TrimRule(where) != where)
    {
        fault =
            nxPrintableText::GetQuoted(where) + " names no sources. A file, or a folder with a slash at its end, does";
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
    const auto isSame = [where](const nxLogLevelRule& rule) { return rule.where == where; };
    const auto same = std::find_if(_rules.begin(), _rules.end(), isSame);
    if (same != _rules.end())
        same->level = level;
    else if (_rules.size() == MostRules)
    {
        fault = "there are more than " + std::to_string(MostRules) + " rules";
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    }
    else
        _rules.push_back({std::string(where), level});
    return nxErrorEnum();
}

nxEnumValue nxLogLevelRules::Find(std::string_view path) const noexcept
{
    nxEnumValue level = NX_ENUM_UNDEFINED;
    RuleFit best;
    for (const nxLogLevelRule& rule : _rules)
        if (const RuleFit fit = FitRule(rule.where, path); fit.IsBetterThan(best))
        {
            best = fit;
            level = rule.level.GetEnumValue();
        }
    return level;
}

nxEnumValue nxLogLevelRules::GetLowest() const noexcept
{
    nxEnumValue lowest = NX_ENUM_UNDEFINED;
    for (const nxLogLevelRule& rule : _rules)
        if (lowest == NX_ENUM_UNDEFINED || rule.level < lowest)
            lowest = rule.level.GetEnumValue();
    return lowest;
}

nxEnumValue nxLogLevelRules::GetHighest() const noexcept
{
    nxEnumValue highest = NX_ENUM_UNDEFINED;
    for (const nxLogLevelRule& rule : _rules)
        highest = std::max(highest, rule.level.GetEnumValue());
    return highest;
}

std::string nxLogLevelRules::GetText() const
{
    std::string text;
    if (_levelForAll != NX_ENUM_UNDEFINED)
        text = nxLogLevelEnum(_levelForAll).GetShortDescription();
    for (const nxLogLevelRule& rule : _rules)
    {
        if (!text.empty())
            text.append(", ");
        text.append(rule.where).append("=").append(rule.level.GetShortDescription());
    }
    return text;
}
