// SPDX-License-Identifier: Apache-2.0
#include "core/price/internal/nxTickTableText.h"

#include <algorithm>
#include <array>

#include "core/price/internal/nxExactSum.h"
#include "core/text/nxPrintableText.h"

namespace
{
constexpr std::string_view tickTableHeader = "name,band,upper_bound,increment";

std::string AtLine(std::size_t line, const std::string& fault) { return "line " + std::to_string(line) + ": " + fault; }

// The text before the next comma, or in the quotes that it begins with, which it then loses.
// @return false when the quotes are not closed, or text follows them.
bool TakeField(std::string_view& line, std::string_view& field, bool& isLast)
{
    const bool isQuoted = line.starts_with('"');
    const std::size_t quote = isQuoted ? line.find('"', 1) : 0;
    if (quote == std::string_view::npos)
        return false;
    const std::size_t end = std::min(line.find(',', quote), line.size());
    if (isQuoted && end != quote + 1)
        return false;
    field = isQuoted ? line.substr(1, quote - 1) : line.substr(0, end);
    isLast = end == line.size();
    line.remove_prefix(std::min(end + 1, line.size()));
    return true;
}

// A fault where the line has another number of fields.
std::string SplitBand(std::string_view line, std::array<std::string_view, 4>& fields)
{
    std::size_t count = 0;
    for (bool isLast = false; !isLast; ++count)
        if (std::string_view further; !TakeField(line, count < fields.size() ? fields[count] : further, isLast))
            return "a quote is not closed, or text follows it";
    return count == fields.size() ? "" : "expected 4 fields, found " + std::to_string(count);
}

// Refuses more digits than a mantissa holds, which a decimal would read and wrap.
std::string ReadBandNumber(std::string_view text, nxDecimal& number)
{
    const auto digits = std::count_if(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (digits > 18)
        return nxPrintableText::GetQuoted(text) + " has more than 18 digits";
    return number.SetFromStringView(text, '.').IsOK() ? "" : nxPrintableText::GetQuoted(text) + " is not a number";
}

// The lowest band begins at 0. Exchanges also print nothing, or the lowest price above 0.
std::string CheckLowest(std::string_view lowerBound, const nxDecimal& increment)
{
    nxDecimal lowest = nxDecimal::ConstructFromValueAndDecimalPlaces(0, 0);
    std::string fault = lowerBound.empty() ? "" : ReadBandNumber(lowerBound, lowest);
    if (fault.empty() && !lowest.IsZero())
        fault = nxBandRules::CheckNumber("lower bound", lowest);
    if (fault.empty())
        fault = nxBandRules::CheckNumber("increment", increment);
    if (fault.empty() && !lowest.IsZero() && nxBandRules::GetUnits(lowest) != nxBandRules::GetUnits(increment))
        fault = "the first lower bound " + nxBandRules::GetNumberText(lowest) + " is neither 0 nor one increment";
    return fault;
}
}  // namespace

std::string nxTickTableText::Read(std::string_view text)
{
    if (text.starts_with("\xEF\xBB\xBF"))
        text.remove_prefix(3);
    bool hasHeader = false;
    while (!text.empty())
    {
        ++_line;
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.empty() || line.front() == '#')
            continue;
        const std::string fault = hasHeader ? _ReadBand(line) : _ReadHeader(line);
        if (!fault.empty())
            return AtLine(_line, fault);
        hasHeader = true;
    }
    if (!hasHeader || _tables.empty())
        return AtLine(std::max<std::size_t>(_line, 1), hasHeader ? "no table" : _ReadHeader(""));
    const std::string fault = _CheckComplete();
    return fault.empty() ? fault : AtLine(_lastLine, fault);
}

std::string nxTickTableText::_ReadHeader(std::string_view line)
{
    std::array<std::string_view, 4> fields;
    const bool isWhole =
        SplitBand(line, fields).empty() && fields[0] == "name" && fields[1] == "band" && fields[3] == "increment";
    _hasLowerBounds = fields[2] == "lower_bound";
    if (isWhole && (_hasLowerBounds || fields[2] == "upper_bound"))
        return "";
    return "expected the header " + nxPrintableText::GetQuoted(tickTableHeader) + ", found " +
           nxPrintableText::GetQuoted(line);
}

std::string nxTickTableText::_ReadBand(std::string_view line)
{
    std::array<std::string_view, 4> fields;
    if (const std::string fault = SplitBand(line, fields); !fault.empty())
        return fault;
    if (_tables.empty() || _tables.back().first != fields[0])
        if (const std::string fault = _StartTable(fields[0]); !fault.empty())
            return fault;

    nxBandRules::Bands& bands = _tables.back().second;
    const std::string expected = std::to_string(bands.size() + 1);
    if (fields[1] != expected)
        return "expected band " + expected + " of " + _tables.back().first + ", found " +
               nxPrintableText::GetQuoted(fields[1]);
    nxDecimal bound = nxDecimal::GetMaximumDecimal();
    nxDecimal increment;
    std::string fault;
    if (!_hasLowerBounds && !fields[2].empty())
        fault = ReadBandNumber(fields[2], bound);
    if (fault.empty())
        fault = ReadBandNumber(fields[3], increment);
    if (fault.empty() && _hasLowerBounds)
        fault = bands.empty() ? CheckLowest(fields[2], increment) : _EndBand(fields[2]);
    if (fault.empty())
        fault = nxBandRules::CheckBand(bands, bound, increment);
    if (fault.empty())
        bands.emplace_back(bound, increment);
    _lastLine = _line;
    return fault;
}

// The band before ends one tick below the first price of the next, whichever of the two ticks the exchange gives that price.
std::string nxTickTableText::_EndBand(std::string_view lowerBound)
{
    nxBandRules::Bands& bands = _tables.back().second;
    const nxDecimal tick = bands.back().second;
    bands.pop_back();
    nxDecimal first;
    std::string fault = ReadBandNumber(lowerBound, first);
    if (fault.empty())
        fault = nxBandRules::CheckNumber("lower bound", first);
    if (fault.empty() && nxBandRules::GetUnits(first) % nxBandRules::GetUnits(tick) != 0)
        fault = "lower bound " + nxBandRules::GetNumberText(first) + " is no multiple of the increment " +
                nxBandRules::GetNumberText(tick) + " below it";
    nxDecimal last = first;
    if (fault.empty() && !nxExactSum::TryAdd(last, tick, false))
        fault = nxBandRules::GetNumberText(first) + " minus increment " + nxBandRules::GetNumberText(tick) +
                " has more digits than a price can hold";
    if (fault.empty() && (!last.IsPositive() || (!bands.empty() && !(last > bands.back().first))))
        fault = "the band below " + nxBandRules::GetNumberText(first) + " has no price";
    if (fault.empty())
        fault = nxBandRules::CheckBand(bands, last, tick);
    bands.emplace_back(last, tick);
    return fault;
}

std::string nxTickTableText::_StartTable(std::string_view name)
{
    std::string fault = nxBandRules::CheckName(name);
    if (fault.empty() && !_names.emplace(name).second)
        fault = "table " + std::string(name) + " stands twice, or its bands do not stand together";
    if (const std::string incomplete = _CheckComplete(); !incomplete.empty())
    {
        _line = _lastLine;
        return incomplete;
    }
    if (fault.empty())
        _tables.emplace_back(name, nxBandRules::Bands());
    return fault;
}

std::string nxTickTableText::_CheckComplete() const
{
    if (_tables.empty() || nxBandRules::IsTop(_tables.back().second.back().first))
        return "";
    return "table " + _tables.back().first + " ends without a band that has no upper bound";
}
