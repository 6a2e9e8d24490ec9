// SPDX-License-Identifier: Apache-2.0
#include "CsvOptions.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "Failure.h"
#include "Text.h"
#include "Words.h"

namespace nxtick
{
namespace
{
constexpr Word<AddedColumn> addedColumns[] = {
    {"tick", AddedColumn::Tick},   {"snapped", AddedColumn::Snapped}, {"moved", AddedColumn::Moved},
    {"below", AddedColumn::Below}, {"above", AddedColumn::Above},
};

char ReadByte(const char* option, const std::string& text)
{
    if (text.size() != 1 || text == "\r" || text == "\n")
        throw Failure(Dashed(option) + " " + Quoted(text) + " is not one byte");
    return text.front();
}

char ReadSeparator(const std::string& text)
{
    if (text == "tab" || text == "\\t")
        return '\t';
    const char separator = ReadByte("separator", text);
    if (text.find_first_of("0123456789+-.") != std::string::npos)
        throw Failure("-separator " + Quoted(text) + " can be part of a number");
    return separator;
}

nxCSVDialect ReadDialect(const Options& options)
{
    nxCSVDialect dialect;
    if (Has(options, "separator"))
        dialect.separator = ReadSeparator(Value(options, "separator"));
    if (Value(options, "quote") == "none")
        dialect.quote = '\0';
    else if (Has(options, "quote"))
        dialect.quote = ReadByte("quote", Value(options, "quote"));
    if (dialect.quote == dialect.separator)
        throw Failure("-quote and -separator are the same byte");
    return dialect;
}

NumberForm ReadNumberForm(const Options& options, const nxCSVDialect& dialect)
{
    NumberForm form;
    form.point = Has(options, "decimal-comma") ? ',' : '.';
    form.hasExponents = Has(options, "exponents");
    if (form.point == dialect.separator && dialect.quote == '\0')
        throw Failure("-decimal-comma needs another -separator or quotes");
    return form;
}

// The elements of all values, which are lists with commas.
std::vector<std::string> Elements(const std::vector<std::string>& values)
{
    std::vector<std::string> elements;
    for (const std::string& value : values)
        for (std::size_t from = 0; from <= value.size();)
        {
            const std::size_t end = std::min(value.find(',', from), value.size());
            elements.push_back(value.substr(from, end - from));
            from = end + 1;
        }
    return elements;
}

std::vector<AddedColumn> ReadAllAdded(const Options& options)
{
    std::vector<AddedColumn> added;
    for (const std::string& text : Elements(Values(options, "add")))
    {
        added.push_back(ReadWord(addedColumns, "added column", text));
        if (std::count(added.begin(), added.end(), added.back()) != 1)
            throw Failure("-add names " + text + " twice");
    }
    return added;
}

std::vector<std::string> ReadFiles(const CommandLine& line)
{
    std::vector<std::string> files = line.files;
    if (std::count(files.begin(), files.end(), "-") > 1)
        throw Failure("standard input is given twice");
    if (files.empty())
        files.emplace_back("-");
    return files;
}

CsvRequest::Check ReadCheck(const Options& options)
{
    if (!Has(options, "check"))
        return CsvRequest::Check::None;
    return Value(options, "check").empty() ? CsvRequest::Check::List : CsvRequest::Check::Count;
}

// Each option excludes those of its list, or needs all of them.
struct Pairing
{
    const char* option;
    bool excludes;
    std::vector<const char*> others;
};

void CheckPairs(const Options& options)
{
    const Pairing pairings[] = {
        {"check", true, {"in-place", "add", "names", "prefix", "method"}},
        {"in-place", true, {"out"}},
        {"no-header", true, {"names", "prefix"}},
        {"names", true, {"prefix"}},
        {"mapping", false, {"symbol-column"}},
        {"symbol-column", false, {"mapping"}},
        {"date-column", false, {"mapping"}},
    };
    for (const Pairing& pairing : pairings)
        for (const char* const other : pairing.others)
            if (Has(options, pairing.option) && Has(options, other) == pairing.excludes)
                throw Failure("option " + Dashed(pairing.excludes ? other : pairing.option) +
                              (pairing.excludes ? " does not go with " : " needs ") +
                              Dashed(pairing.excludes ? pairing.option : other));
}
}  // namespace

std::string_view GetName(AddedColumn column)
{
    const auto* const found = std::find_if(std::begin(addedColumns), std::end(addedColumns),
                                           [column](const auto& each) { return each.value == column; });
    return found->word;
}

CsvRequest ReadCsvRequest(const CommandLine& line)
{
    const Options& options = line.options;
    CheckPairs(options);
    CsvRequest csv;
    csv.files = ReadFiles(line);
    csv.outFile = Has(options, "out") ? Value(options, "out") : "-";
    csv.isInPlace = Has(options, "in-place");
    csv.columns = Values(options, "column");
    csv.dialect = ReadDialect(options);
    csv.numbers = ReadNumberForm(options, csv.dialect);
    csv.hasHeader = !Has(options, "no-header");
    csv.added = ReadAllAdded(options);
    csv.names = Elements(Values(options, "names"));
    csv.prefix = Value(options, "prefix");
    csv.tableColumn = Value(options, "table-column");
    csv.mappingFile = Value(options, "mapping");
    csv.symbolColumn = Value(options, "symbol-column");
    csv.dateColumn = Value(options, "date-column");
    csv.check = ReadCheck(options);
    if (csv.isInPlace && std::count(csv.files.begin(), csv.files.end(), "-") != 0)
        throw Failure("-in-place needs the names of files");
    return csv;
}
}  // namespace nxtick
