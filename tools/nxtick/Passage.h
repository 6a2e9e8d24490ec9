// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_PASSAGE_H
#define NXTICK_PASSAGE_H

#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "CsvReader.h"
#include "FileDescriptor.h"
#include "InputFile.h"
#include "OutputFile.h"
#include "RowGrids.h"
#include "RowWork.h"
#include "SnapReport.h"
#include "core/thread/nxConditionMutex.h"
#include "core/thread/nxMutex.h"

namespace nxtick
{
/// The way of one file's rows through some work to the output.
///
/// Several workers share it. Each in turn reads a block of rows, works on it alone with grids of its own, and then writes
/// in the order of the blocks, so that rows and messages come as with one worker. A file of one block has one worker. The
/// memory is some blocks for each worker. Before the input makes the program wait, all rows that are known are written.
/// The first failure in the order of the rows ends all workers.
class Passage
{
public:
    using Complaint = std::function<void(std::uint64_t, const std::string&)>;
    using MakeWork = std::function<std::unique_ptr<RowWork>(RowGrids&, Complaint)>;

    /// @param workers how many there are at most, at least 1. All others must outlive the object.
    Passage(InputFile& input, OutputFile& output, SnapReport& report, const nxCSVDialect& dialect, unsigned workers);
    ~Passage();
    Passage(const Passage&) = delete;
    Passage& operator=(const Passage&) = delete;

    /// Reads a row before PassAll(). @throws FileFailure "LINE: reason", Failure.
    bool Next(nxCSVRow& row);
    /// Whether the file begins with the mark of UTF-8. Known after Next().
    bool HasByteOrderMark();
    /// Where text goes that is written before the next rows.
    TextBlock& GetText();
    /// Writes that text.
    void HandOver();

    /// Passes all further rows to work, of which each worker gets its own.
    /// @param first a row that Next() returned last and that is worked on as well; null for none.
    /// @return the counts. @throws what the work throws, FileFailure, Failure.
    SnapCounts PassAll(const GridSource& source, const MakeWork& makeWork, const nxCSVRow* first);

    /// Whether the last row has no line end. Known after PassAll().
    bool EndsInLine() const { return _endsInLine; }

private:
    class Worker;

    void _StartOthers(const GridSource& source, const MakeWork& makeWork);
    void _WaitForOthers();
    void _PassBlocks(Worker& worker);
    bool _Read(Worker& worker) NX_REQUIRES(_reading);
    bool _Take(Worker& worker);
    bool _Write(Worker& worker);
    bool _AwaitTurn(std::uint64_t number);
    void _EndTurn();
    void _Fail(std::exception_ptr failure);
    bool _HasFailed();
    void _Flush();
    void _FlushBeforeWaiting() NX_REQUIRES(_reading);
    std::size_t _ReadInput(char* buffer, std::size_t size) NX_NO_THREAD_SAFETY_ANALYSIS;

    InputFile& _input;
    OutputFile& _output;
    SnapReport& _report;
    nxCSVDialect _dialect;
    unsigned _mostWorkers;
    std::vector<std::unique_ptr<Worker>> _workers;  // the first is the thread that has the passage
    FileDescriptor _ended;                          // of several workers; can be read after a failure

    nxMutex _reading;
    CsvReader _reader NX_GUARDED_BY(_reading);
    std::uint64_t _nextRead NX_GUARDED_BY(_reading) = 0;  // number of the next block
    bool _isReadingOver NX_GUARDED_BY(_reading) = false;
    bool _isAtStart = true;

    nxConditionMutex _turn;
    std::uint64_t _nextWritten NX_GUARDED_BY(_turn) = 0;
    std::uint64_t _flushBefore NX_GUARDED_BY(_turn) = 0;  // what was written is handed over before this block
    std::exception_ptr _failure NX_GUARDED_BY(_turn);
    // Used by the worker whose turn it is.
    SnapCounts _counts;
    bool _endsInLine = false;
};
}  // namespace nxtick

#endif
