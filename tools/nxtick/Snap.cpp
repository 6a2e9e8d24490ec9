// SPDX-License-Identifier: Apache-2.0
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Commands.h"
#include "CsvHeader.h"
#include "Failure.h"
#include "InputFile.h"
#include "OffGridListing.h"
#include "OutputFile.h"
#include "Passage.h"
#include "PriceSnapper.h"
#include "RowGrids.h"
#include "SnapPlan.h"
#include "SnapReport.h"

namespace nxtick
{
namespace
{
// One run over all files of a request.
class SnapRun
{
public:
    explicit SnapRun(const Request& request)
        : _request(request), _csv(request.csv), _source(request), _report(request.isQuiet)
    {
    }

    // All files to one output with one header.
    int SnapTogether()
    {
        std::optional<InputFile> first;  // opened before the output is made
        first.emplace(_csv.files.front());
        OutputFile output(_csv.outFile);
        _ForOne(*first, [&] { _Snap(*first, output, false); });
        first.reset();
        for (std::size_t i = 1; i < _csv.files.size(); ++i)
        {
            InputFile input(_csv.files[i]);
            _ForOne(input, [&] { _Snap(input, output, true); });
        }
        output.Complete();
        _report.Summary("moved");
        return _GetStatus(false);
    }

    // Each file is replaced; one that cannot be is as it was, and the others are done.
    int SnapInPlace()
    {
        for (const std::string& file : _csv.files)
            _Try(
                [&]
                {
                    InputFile input(file);
                    if (!input.IsRegular())
                        throw Failure("cannot replace " + input.GetName() + ": it is no regular file");
                    OutputFile output(file);
                    _ForOne(input, [&] { _Snap(input, output, false); });
                    output.Complete();
                });
        _report.Summary("moved");
        return _GetStatus(false);
    }

    int Check()
    {
        const bool isCount = _csv.check == CsvRequest::Check::Count;
        OutputFile output(_csv.outFile);
        OffGridListing listing(_request.format, _request.notation,
                               _csv.columns.size() > 1 || _csv.columns[0].find(',') != std::string::npos);
        std::string text;
        if (!isCount)
            listing.Begin(text);
        output.Append(text);
        for (const std::string& file : _csv.files)
            _Try(
                [&]
                {
                    InputFile input(file);
                    _ForOne(input, [&] { _Check(file, input, output, isCount ? nullptr : &listing); });
                });
        text = isCount ? OffGridListing::GetCounts(_request.format, _report.GetTotal()) : std::string();
        if (!isCount)
            listing.End(text);
        output.Append(text);
        output.Complete();
        if (!isCount)
            _report.Summary("off the grid");
        return _GetStatus(true);
    }

private:
    // What a file's failure says begins with the file's name.
    template <class Work>
    void _ForOne(const InputFile& input, const Work& work)
    {
        _report.BeginFile(input.GetName());
        try
        {
            work();
        }
        catch (const FileFailure& failure)
        {
            throw Failure(input.GetName() + ":" + failure.what());
        }
    }

    // Goes on after a failure, but not when the output that all files share fails.
    template <class Work>
    void _Try(const Work& work)
    {
        try
        {
            work();
        }
        catch (const Failure& failure)
        {
            if (!_csv.isInPlace && dynamic_cast<const OutputFailure*>(&failure) != nullptr)
                throw;
            _report.Failed(failure.what());
            _hasFailed = true;
        }
    }

    void _Snap(InputFile& input, OutputFile& output, bool isContinued)
    {
        if (input.IsSameFile(output.GetStream()))
            throw Failure("cannot write " + output.GetName() +
                          ": it is the input file; to replace that, name it with -out");
        Passage passage(input, output, _report, _csv.dialect, _csv.workers);
        nxCSVRow row;
        if (!_FindFirst(passage, row, !isContinued))
            return passage.HandOver();
        const CsvHeader header(row, _csv.hasHeader);
        const SnapPlan plan(_csv, _request.notation, header, _source.HasBands());
        if (isContinued)
            _Continue(header, row, passage.GetText());
        else
            _firstNames = header.GetNames();
        if (_csv.hasHeader && !isContinued)
            for (const std::string_view part :
                 {row.content, std::string_view(plan.GetHeaderAddition()), row.terminator})
                passage.GetText().Append(part);
        _lineEnd = row.terminator.empty() ? "\n" : row.terminator;
        const auto makeWork = [&](RowGrids& grids, Passage::Complaint complaint)
        { return std::make_unique<PriceSnapper>(plan, grids, std::move(complaint)); };
        _report.EndFile(passage.PassAll(_source, makeWork, _csv.hasHeader ? nullptr : &row));
        _endsInLine = passage.EndsInLine();
    }

    void _Check(const std::string& file, InputFile& input, OutputFile& output, OffGridListing* listing)
    {
        if (input.IsSameFile(output.GetReplaced()) || input.IsSameFile(output.GetStream()))
            throw OutputFailure("cannot write " + output.GetName() + ": it is the input file");
        Passage passage(input, output, _report, _csv.dialect, _csv.workers);
        nxCSVRow row;
        if (!_FindFirst(passage, row, false))
            return;
        const CsvHeader header(row, _csv.hasHeader);
        const SnapPlan plan(_csv, _request.notation, header, _source.HasBands());
        const auto makeWork = [&](RowGrids& grids, Passage::Complaint complaint)
        { return std::make_unique<PriceChecker>(plan, grids, std::move(complaint), file, listing); };
        _report.EndFile(passage.PassAll(_source, makeWork, _csv.hasHeader ? nullptr : &row));
    }

    // Finds the first row that is not an empty line. @return false if there is none and none is needed.
    // @param copiesStart whether what is before the row is written: the mark of UTF-8 and empty lines.
    bool _FindFirst(Passage& passage, nxCSVRow& row, bool copiesStart) const
    {
        bool hasRow = passage.Next(row);
        if (copiesStart && passage.HasByteOrderMark())
            passage.GetText().Append("\xEF\xBB\xBF");
        for (; hasRow; hasRow = passage.Next(row))
        {
            if (!row.content.empty())
                return true;
            if (copiesStart)
                passage.GetText().Append(row.terminator);
        }
        if (_csv.hasHeader)
            throw FileFailure("1: there is no header line");
        return false;
    }

    // Rows after those of another file need the same columns, and a line of their own.
    void _Continue(const CsvHeader& header, const nxCSVRow& row, TextBlock& text)
    {
        if (!_firstNames.empty() && header.GetNames() != _firstNames)
            throw FileFailure(std::to_string(row.line) +
                              ": the columns are not those of the first file; -in-place takes each file by itself");
        if (_endsInLine)
            text.Append(_lineEnd);
    }

    int _GetStatus(bool isCheck) const
    {
        const SnapCounts& counts = _report.GetTotal();
        return _hasFailed ? 2 : counts.rejected != 0 || (isCheck && counts.moved != 0) ? 1 : 0;
    }

    const Request& _request;
    const CsvRequest& _csv;
    GridSource _source;
    SnapReport _report;
    bool _hasFailed = false;
    std::vector<std::string> _firstNames;  // of the columns of the first file
    std::string _lineEnd;
    bool _endsInLine = false;  // the last row so far has no line end
};
}  // namespace

int Snap(const Request& request)
{
    SnapRun run(request);
    if (request.csv.check != CsvRequest::Check::None)
        return run.Check();
    return request.csv.isInPlace ? run.SnapInPlace() : run.SnapTogether();
}
}  // namespace nxtick
