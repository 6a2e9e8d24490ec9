// SPDX-License-Identifier: Apache-2.0
#include "core/price/internal/nxTickTableText.h"

#include <algorithm>
#include <array>

#include "core/text/nxPrintableText.h"

namespace
{
constexpr std::string_view tickTableHeader = "name,band,upper_bound,increment";

std::string AtLine(std::size_t line, const std::string& fault) { return "line " + std::to_string(line) + ": " + fault; }

std::size_t SplitBand(std::string_view line, std::array<std::string_view, 4>& fields)
{
    std::size_t count = 0;
    for (;; ++count)
    {
        const std::size_t end = std::min(line.find(','), line.size());
        if (count < fields.size())
            fields[count] = line.substr(0, end);
        if (end == line.size())
            return count + 1;
        line.remove_prefix(end + 1);
    }
}

// Refuses more digits than a mantissa holds, which a decimal would read and wrap.
std::string ReadBandNumber(std::string_view text, nxDecimal& number)
{
    const auto digits = std::count_if(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
    if (digits > 18)
        return nxPrintableText::GetQuoted(text) + " has more than 18 digits";
    return number.SetFromStringView(text, '.').IsOK() ? "" : nxPrintableText::GetQuoted(text) + " is not a number";
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
        if (line.empty())
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
    return line == tickTableHeader ? ""
                                   : "expected the header " + nxPrintableText::GetQuoted(tickTableHeader) +
                                         ", found " + nxPrintableText::GetQuoted(line);
}

std::string nxTickTableText::_ReadBand(std::string_view line)
{
    std::array<std::string_view, 4> fields;
    const std::size_t count = SplitBand(line, fields);
    if (count != fields.size())
        return "expected 4 fields, found " + std::to_string(count);
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
    std::string fault = fields[2].empty() ? "" : ReadBandNumber(fields[2], bound);
    if (fault.empty())
        fault = ReadBandNumber(fields[3], increment);
    if (fault.empty())
        fault = nxBandRules::CheckBand(bands, bound, increment);
    if (fault.empty())
        bands.emplace_back(bound, increment);
    _lastLine = _line;
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
