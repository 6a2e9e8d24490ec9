// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PASSAGE_H
#define NXTICK_PASSAGE_H

#include <cstddef>

#include "CsvReader.h"
#include "InputFile.h"
#include "OutputFile.h"
#include "SnapReport.h"
#include "TextBlock.h"

namespace nxtick
{
/// The way of one file's rows through some work to the output. The reader, the work on a row and the output know nothing
/// of each other. Before the input makes the program wait, all that is known is handed over.
class Passage
{
public:
    /// All must outlive the object.
    Passage(InputFile& input, OutputFile& output, SnapReport& report, const CsvDialect& dialect)
        : _input(input),
          _output(output),
          _report(report),
          _reader([this](char* buffer, std::size_t size) { return _Read(buffer, size); }, dialect)
    {
    }
    Passage(const Passage&) = delete;
    Passage& operator=(const Passage&) = delete;

    /// Reads the next row. @throws FileFailure "LINE: reason", Failure.
    bool Next(CsvRow& row)
    {
        if (_text.GetSize() >= _blockSize)
            HandOver();
        return _reader.Next(row);
    }

    /// Where the work appends its result.
    TextBlock& GetText() { return _text; }
    /// Hands the text to the output.
    void HandOver();

    /// Passes all further rows to @p work, which has `Row(row, text)` and `GetCounts()`.
    /// @param row the row before these; then the last one, whose content is not valid any more.
    template <class Work>
    void PassAll(Work& work, CsvRow& row)
    {
        _counts = &work.GetCounts();
        while (Next(row))
            work.Row(row, _text);
        HandOver();
        _counts = nullptr;
    }

private:
    static constexpr std::size_t _blockSize = std::size_t{1} << 18;

    std::size_t _Read(char* buffer, std::size_t size);

    InputFile& _input;
    OutputFile& _output;
    SnapReport& _report;
    CsvReader _reader;
    TextBlock _text;
    const SnapCounts* _counts = nullptr;
    bool _isAtStart = true;
};
}  // namespace nxtick

#endif
