// SPDX-License-Identifier: Apache-2.0
#include <string>
#include <string_view>

#include "Commands.h"
#include "CsvReader.h"
#include "Failure.h"
#include "GridChoice.h"
#include "InputFile.h"
#include "OutputFile.h"
#include "PriceGrid.h"
#include "PriceSnapper.h"
#include "SnapReport.h"

namespace nxtick
{
namespace
{
// Finds the header. Empty lines before it are copied.
void PassHeader(CsvReader& reader, PriceSnapper& snapper, const std::string& column)
{
    CsvRow row;
    while (reader.Next(row))
    {
        if (!row.content.empty())
            return snapper.Header(row, column);
        snapper.Row(row);
    }
    throw FileFailure("1: there is no header line");
}

int SnapFile(InputFile& input, PriceGrid& grid, const Request& request)
{
    OutputFile output(request.outFile);
    if (input.IsSameFile(output.GetStream()))
        throw Failure("cannot write " + output.GetName() +
                      ": it is the input file; to replace that, name it with -out");
    SnapReport report(input.GetName());
    PriceSnapper snapper(
        grid, request.method, [&output](std::string_view text) { output.Append(text); },
        [&report](std::uint64_t line, const std::string& reason) { report.Rejected(line, reason); });
    CsvReader reader(
        [&](char* buffer, std::size_t size)
        {
            report.Progress(snapper.GetCounts(), input.GetShareRead());
            return input.Read(buffer, size);
        });
    PassHeader(reader, snapper, request.column);
    CsvRow row;
    while (reader.Next(row))
        snapper.Row(row);
    report.ClearProgress();
    output.Complete();
    report.Summary(snapper.GetCounts());
    return snapper.GetCounts().rejected == 0 ? 0 : 1;
}
}  // namespace

int Snap(const Request& request)
{
    InputFile input(request.csvFile);
    const GridChoice choice(request);
    try
    {
        return SnapFile(input, choice.GetGrid(), request);
    }
    catch (const FileFailure& failure)
    {
        throw Failure(input.GetName() + ":" + failure.what());
    }
}
}  // namespace nxtick
