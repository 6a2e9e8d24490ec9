// SPDX-License-Identifier: Apache-2.0
#include "core/price/nxCustomVariableTickTable.h"

#include "core/log/nxLogMacros.h"
#include "core/platform/nxByteSource.h"
#include "core/price/internal/nxBandRules.h"
#include "core/price/internal/nxExactSum.h"
#include "core/price/internal/nxTickTableText.h"
#include "core/price/nxTickTableSource.h"
#include "core/text/nxPrintableText.h"

namespace
{
constexpr std::size_t maxFileSize = std::size_t{4} << 20;

using Bands = nxCustomVariableTickTable::Bands;

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

}  // namespace

nxCustomVariableTickTable::nxCustomVariableTickTable(const std::string& name, const Bands& bands)
    : nxVariableTickTable(Unwatched()), _name(name)
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
        if ((nxBandRules::GetUnits(bound) + nxBandRules::GetUnits(tick)) % nxBandRules::GetUnits(nextTick) == 0)
            continue;
        std::string text = "table " + _name + ": band " + std::to_string(i) + ": upper bound " +
                           nxBandRules::GetNumberText(bound) + " plus increment " + nxBandRules::GetNumberText(tick) +
                           " is no multiple of the next increment " + nxBandRules::GetNumberText(nextTick) +
                           ", so prices near it are rounded off the grid";
        nxDecimal last = bound;
        if (nxBandRules::GetUnits(bound) % nxBandRules::GetUnits(nextTick) == 0 &&
            nxBandRules::GetUnits(bound) > nxBandRules::GetUnits(tick) && nxExactSum::TryAdd(last, tick, false))
            text += "; where the exchange says \"up to and including " + nxBandRules::GetNumberText(bound) +
                    "\", the bound is " + nxBandRules::GetNumberText(last);
        return text;
    }
    return "";
}

std::string nxCustomVariableTickTable::GetID() const { return std::string(nxTickTableSource::IDPrefix) + _name; }

nxErrorEnum nxCustomVariableTickTable::Create(const std::string& name, const Bands& bands,
                                              std::unique_ptr<nxCustomVariableTickTable>& table, std::string& reason)
{
    std::string fault = nxBandRules::CheckName(name);
    Bands checked;
    for (std::size_t i = 0; i < bands.size() && fault.empty(); ++i)
    {
        fault = nxBandRules::CheckBand(checked, bands[i].first, bands[i].second);
        if (!fault.empty())
            fault = "band " + std::to_string(i + 1) + ": " + fault;
        checked.push_back(bands[i]);
    }
    if (fault.empty() && (checked.empty() || !nxBandRules::IsTop(checked.back().first)))
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
    nxTickTableText reader;
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
