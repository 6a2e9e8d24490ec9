// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxCustomVariableTickTable.h"

#include <algorithm>
#include <array>
#include <set>

#include "core/log/nxLogMacros.h"
#include "core/numeric/inline/nxWide.h"
#include "core/numeric/nxPowersOfTen.h"
#include "core/platform/nxByteSource.h"
#include "core/price/internal/nxExactSum.h"
#include "core/price/nxTickTableSource.h"
#include "core/text/nxOStream.h"
#include "core/text/nxPrintableText.h"
#include "core/text/nxSimpleAsciiStringWriter.h"

namespace
{
constexpr unsigned char maxBandPlaces = 15;
constexpr long long maxMantissa = 999'999'999'999'999'999;
constexpr std::size_t maxNameLength = 64;
constexpr std::size_t maxFileSize = std::size_t{4} << 20;
constexpr std::string_view header = "name,band,upper_bound,increment";

using Bands = nxCustomVariableTickTable::Bands;

bool IsName(std::string_view text)
{
    return !text.empty() && text.size() <= maxNameLength &&
           std::all_of(text.begin(), text.end(),
                       [](char c)
                       {
                           return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
                                  c == '_' || c == '-' || c == '.';
                       });
}

// A number with all its decimals, or "NULL".
std::string NumberText(const nxDecimal& number)
{
    if (!number.IsValid())
        return number.GetAsLogString('.');
    nxOStream<nxSimpleAsciiStringWriter> stream;
    number.Write(stream, '.');
    return stream.GetWriter().GetText();
}

// Each returns the fault as a sentence; empty when there is none.
std::string CheckName(std::string_view name)
{
    return IsName(name) ? ""
                        : nxPrintableText::GetQuoted(name) + " is not a name: 1 to 64 letters, digits, '_', '-' or '.'";
}

std::string CheckNumber(const char* what, const nxDecimal& number)
{
    if (!number.IsPositive())
        return std::string(what) + " " + NumberText(number) + " is not positive";
    if (number.GetDecimalPlaces() > maxBandPlaces || number.GetValue() > maxMantissa)
        return std::string(what) + " " + NumberText(number) + " has more than 18 digits or 15 decimals";
    return "";
}

bool IsTop(const nxDecimal& bound) { return bound.IsNull() || bound.EqualsExactly(nxDecimal::GetMaximumDecimal()); }

// Whether a price at the bound can be moved by the increment.
std::string CheckStep(const nxDecimal& bound, const nxDecimal& increment)
{
    nxDecimal above = bound;
    return nxExactSum::TryAdd(above, increment, true) ? ""
                                                      : NumberText(bound) + " plus increment " + NumberText(increment) +
                                                            " has more digits than a price can hold";
}

// Whether a band may follow the bands before it.
std::string CheckBand(const Bands& before, const nxDecimal& bound, const nxDecimal& increment)
{
    if (!before.empty() && IsTop(before.back().first))
        return "a band follows the one without an upper bound";
    std::string fault = CheckNumber("increment", increment);
    if (fault.empty() && !IsTop(bound))
        fault = CheckNumber("upper bound", bound);
    if (fault.empty() && !IsTop(bound) && !before.empty() && !(bound > before.back().first))
        fault = "upper bound " + NumberText(bound) + " is not above " + NumberText(before.back().first);
    if (fault.empty() && !(IsTop(bound) && before.empty()))
        fault = CheckStep(IsTop(bound) ? before.back().first : bound, increment);
    return fault;
}

// A number of a band in units of the smallest number that a band may have.
nxWide GetUnits(const nxDecimal& number)
{
    return nxWide{number.GetValue()} *
           nxPowersOfTen::GetInteger(std::size_t{maxBandPlaces} - number.GetDecimalPlaces());
}

// The reason why a file gives no text; empty where it gives one.
std::string DescribeFailure(nxByteSource::Outcome outcome)
{
    switch (outcome)
    {
        case nxByteSource::Outcome::NotOpened:
            return "cannot be opened";
        case nxByteSource::Outcome::NotRead:
            return "cannot be read";
        case nxByteSource::Outcome::TooLarge:
            return "larger than 4 MiB";
        case nxByteSource::Outcome::Silent:
            return "a pipe to which nobody writes";
        case nxByteSource::Outcome::Complete:
            break;
    }
    return "";
}

// Reads the tables of a text line by line.
class Reader
{
public:
    // Returns the fault after its line number; empty when there is none.
    std::string Read(std::string_view text)
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
            const std::string fault = hasHeader ? ReadBand(line) : ReadHeader(line);
            if (!fault.empty())
                return Locate(_line, fault);
            hasHeader = true;
        }
        if (!hasHeader || _tables.empty())
            return Locate(std::max<std::size_t>(_line, 1), hasHeader ? "no table" : ReadHeader(""));
        const std::string fault = CheckComplete();
        return fault.empty() ? fault : Locate(_lastLine, fault);
    }

    const std::vector<std::pair<std::string, Bands>>& GetTables() const { return _tables; }

private:
    static std::string Locate(std::size_t line, const std::string& fault)
    {
        return "line " + std::to_string(line) + ": " + fault;
    }

    static std::string ReadHeader(std::string_view line)
    {
        return line == header ? ""
                              : "expected the header " + nxPrintableText::GetQuoted(header) + ", found " +
                                    nxPrintableText::GetQuoted(line);
    }

    std::string ReadBand(std::string_view line)
    {
        std::array<std::string_view, 4> fields;
        const std::size_t count = Split(line, fields);
        if (count != fields.size())
            return "expected 4 fields, found " + std::to_string(count);
        if (_tables.empty() || _tables.back().first != fields[0])
            if (const std::string fault = StartTable(fields[0]); !fault.empty())
                return fault;

        Bands& bands = _tables.back().second;
        const std::string expected = std::to_string(bands.size() + 1);
        if (fields[1] != expected)
            return "expected band " + expected + " of " + _tables.back().first + ", found " +
                   nxPrintableText::GetQuoted(fields[1]);
        nxDecimal bound = nxDecimal::GetMaximumDecimal();
        nxDecimal increment;
        std::string fault = fields[2].empty() ? "" : ReadNumber(fields[2], bound);
        if (fault.empty())
            fault = ReadNumber(fields[3], increment);
        if (fault.empty())
            fault = CheckBand(bands, bound, increment);
        if (fault.empty())
            bands.emplace_back(bound, increment);
        _lastLine = _line;
        return fault;
    }

    std::string StartTable(std::string_view name)
    {
        std::string fault = CheckName(name);
        if (fault.empty() && !_names.emplace(name).second)
            fault = "table " + std::string(name) + " stands twice, or its bands do not stand together";
        if (const std::string incomplete = CheckComplete(); !incomplete.empty())
        {
            _line = _lastLine;
            return incomplete;
        }
        if (fault.empty())
            _tables.emplace_back(name, Bands());
        return fault;
    }

    std::string CheckComplete() const
    {
        if (_tables.empty() || IsTop(_tables.back().second.back().first))
            return "";
        return "table " + _tables.back().first + " ends without a band that has no upper bound";
    }

    static std::size_t Split(std::string_view line, std::array<std::string_view, 4>& fields)
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
    static std::string ReadNumber(std::string_view text, nxDecimal& number)
    {
        const auto digits = std::count_if(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; });
        if (digits > 18)
            return nxPrintableText::GetQuoted(text) + " has more than 18 digits";
        return number.SetFromStringView(text, '.').IsOK() ? "" : nxPrintableText::GetQuoted(text) + " is not a number";
    }

    std::vector<std::pair<std::string, Bands>> _tables;
    std::set<std::string, std::less<>> _names;
    std::size_t _line = 0;
    std::size_t _lastLine = 0;
};
}  // namespace

nxCustomVariableTickTable::nxCustomVariableTickTable(const std::string& name, const Bands& bands) : _name(name)
{
    for (std::size_t i = 0; i + 1 < bands.size(); ++i)
        _AddRange(bands[i].first, bands[i].second);
    _AddTopRange(bands.back().second);
}

std::unique_ptr<nxCustomVariableTickTable> nxCustomVariableTickTable::_Make(const std::string& name, const Bands& bands)
{
    std::unique_ptr<nxCustomVariableTickTable> table(new nxCustomVariableTickTable(name, bands));
    if (const std::string warning = table->GetGridWarning(); !warning.empty())
        NX_LOG(NX_LOG_LEVEL_WARNING) << warning;
    return table;
}

std::string nxCustomVariableTickTable::GetGridWarning() const
{
    const Bands& bands = GetRangeData();
    for (std::size_t i = 1; i < bands.size(); ++i)
    {
        const auto& [bound, tick] = bands[i - 1];
        const nxDecimal& nextTick = bands[i].second;
        if ((GetUnits(bound) + GetUnits(tick)) % GetUnits(nextTick) == 0)
            continue;
        std::string text = "table " + _name + ": band " + std::to_string(i) + ": upper bound " + NumberText(bound) +
                           " plus increment " + NumberText(tick) + " is no multiple of the next increment " +
                           NumberText(nextTick) + ", so prices near it are rounded off the grid";
        nxDecimal last = bound;
        if (GetUnits(bound) % GetUnits(nextTick) == 0 && GetUnits(bound) > GetUnits(tick) &&
            nxExactSum::TryAdd(last, tick, false))
            text += "; where the exchange says \"up to and including " + NumberText(bound) + "\", the bound is " +
                    NumberText(last);
        return text;
    }
    return "";
}

std::string nxCustomVariableTickTable::GetID() const { return std::string(nxTickTableSource::IDPrefix) + _name; }

nxErrorEnum nxCustomVariableTickTable::Create(const std::string& name, const Bands& bands,
                                              std::unique_ptr<nxCustomVariableTickTable>& table, std::string& reason)
{
    std::string fault = CheckName(name);
    Bands checked;
    for (std::size_t i = 0; i < bands.size() && fault.empty(); ++i)
    {
        fault = CheckBand(checked, bands[i].first, bands[i].second);
        if (!fault.empty())
            fault = "band " + std::to_string(i + 1) + ": " + fault;
        checked.push_back(bands[i]);
    }
    if (fault.empty() && (checked.empty() || !IsTop(checked.back().first)))
        fault = "there is no band without an upper bound";
    if (!fault.empty())
    {
        reason = fault;
        return nxErrorEnum(NX_ERR_INVALID_PARAMETER);
    }
    table = _Make(name, bands);
    return nxErrorEnum();
}

nxErrorEnum nxCustomVariableTickTable::ReadText(std::string_view text, Tables& tables, std::string& reason)
{
    Reader reader;
    if (std::string fault = reader.Read(text); !fault.empty())
    {
        reason = fault;
        return nxErrorEnum(NX_ERR_CSV_FILE_READ_ERROR);
    }
    Tables made;
    for (const auto& [name, bands] : reader.GetTables())
        made.push_back(_Make(name, bands));
    tables = std::move(made);
    return nxErrorEnum();
}

nxErrorEnum nxCustomVariableTickTable::ReadFile(const std::string& fileName, Tables& tables, std::string& reason)
{
    std::string text;
    const nxByteSource::Outcome outcome = nxByteSource::ReadAll(fileName, maxFileSize, text);
    std::string fault = DescribeFailure(outcome);
    nxErrorEnum error(outcome == nxByteSource::Outcome::NotOpened ? NX_ERR_FAILED_TO_OPEN_FILE : NX_ERR_FILE_READ_ERR);
    if (fault.empty())
        error = ReadText(text, tables, fault);
    if (!error.IsOK())
        reason = nxPrintableText::GetEscaped(fileName) + ": " + fault;
    return error;
}
