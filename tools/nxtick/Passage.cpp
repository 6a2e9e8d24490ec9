// SPDX-License-Identifier: Apache-2.0
#include "Passage.h"

#include <sys/eventfd.h>

#include <chrono>
#include <string_view>

#include "CsvHeader.h"
#include "Failure.h"
#include "core/thread/nxMutexGuard.h"
#include "core/thread/nxThread.h"

namespace nxtick
{
// One thread's block and what becomes of it.
class Passage::Worker : public nxThread
{
public:
    Worker(Passage& passage, const nxCSVDialect& dialect) : _passage(passage), _rows(dialect) {}

    void Prepare(const GridSource& source, const MakeWork& makeWork)
    {
        _source = &source;
        _grids.emplace(source);
        _work = makeWork(
            *_grids, [this](std::uint64_t line, const std::string& reason) { _rejected.emplace_back(line, reason); });
    }

    nxCSVBlock& GetBlock() { return _block; }
    nxCSVRows& GetRows() { return _rows; }
    TextBlock& GetText() { return _text; }
    std::uint64_t GetNumber() const { return _number; }

    /// Takes over what GetBlock() was filled with. @param share of the file that has been read.
    void Begin(std::uint64_t number, double share)
    {
        _number = number;
        _share = share;
        _endsInLine = std::string_view("\r\n").find(_block.GetText().back()) == std::string_view::npos;
        _rows.Begin(_block);
    }
    /// Takes a failure in place of a block.
    void Begin(std::uint64_t number, std::exception_ptr failure)
    {
        _number = number;
        _failure = std::move(failure);
    }

    /// Works on the block. A failure waits for its turn.
    void Work(const nxCSVRow* first = nullptr)
    {
        if (_failure != nullptr)
            return;
        try
        {
            if (first != nullptr)
                _work->Row(*first, _text);
            _work->Rows(_rows, _text);
        }
        catch (...)
        {
            _failure = std::current_exception();
        }
    }

    /// Writes what became of the block. @throws its failure, Failure.
    void Write()
    {
        for (const TableEntry* const entry : _grids->TakeNew())
            _source->Warn(*entry);
        for (const auto& [line, reason] : _rejected)
            _passage._report.Rejected(line, reason);
        _rejected.clear();
        _passage._output.Append(_work->Join(_text.GetText()));
        _text.Clear();
        _passage._counts += _work->TakeCounts();
        if (_failure != nullptr)
            std::rethrow_exception(_failure);
        _passage._endsInLine = _endsInLine;
        _passage._report.Progress(_passage._counts, _share);
    }

    nxErrorEnum Run() override
    {
        _passage._PassBlocks(*this);
        return nxErrorEnum();
    }

private:
    Passage& _passage;
    const GridSource* _source = nullptr;
    std::optional<RowGrids> _grids;
    std::unique_ptr<RowWork> _work;
    nxCSVBlock _block;
    nxCSVRows _rows;
    TextBlock _text;
    std::vector<std::pair<std::uint64_t, std::string>> _rejected;  // rows by their lines, with the reasons
    std::uint64_t _number = 0;                                     // of the block
    double _share = 0;
    bool _endsInLine = false;
    std::exception_ptr _failure;
};

Passage::Passage(InputFile& input, OutputFile& output, SnapReport& report, const nxCSVDialect& dialect,
                 unsigned workers)
    : _input(input),
      _output(output),
      _report(report),
      _dialect(dialect),
      _mostWorkers(workers),
      _reader([this](char* buffer, std::size_t size) { return _ReadInput(buffer, size); }, dialect)
{
    _workers.push_back(std::make_unique<Worker>(*this, dialect));
}

Passage::~Passage() { _WaitForOthers(); }

bool Passage::Next(nxCSVRow& row)
{
    Worker& self = *_workers.front();
    while (!self.GetRows().Next(row))
    {
        HandOver();
        const nxMutexGuard reading(_reading);
        {
            const nxMutexGuard turn(_turn);
            _nextWritten = _nextRead;
        }
        if (!_Read(self))
            return false;
    }
    return true;
}

bool Passage::HasByteOrderMark()
{
    const nxMutexGuard reading(_reading);
    return _reader.HasByteOrderMark();
}

TextBlock& Passage::GetText() { return _workers.front()->GetText(); }

void Passage::HandOver()
{
    _output.Append(GetText().GetText());
    GetText().Clear();
}

SnapCounts Passage::PassAll(const GridSource& source, const MakeWork& makeWork, const nxCSVRow* first)
{
    Worker& self = *_workers.front();
    self.Prepare(source, makeWork);
    self.Work(first);
    // The second block shows that others are worth their start.
    if (_Write(self) && _Take(self))
    {
        _StartOthers(source, makeWork);
        self.Work();
        if (_Write(self))
            _PassBlocks(self);
    }
    _WaitForOthers();
    const nxMutexGuard guard(_turn);
    if (_failure != nullptr)
        std::rethrow_exception(_failure);
    return _counts;
}

// Threads that the system does not grant are done without.
void Passage::_StartOthers(const GridSource& source, const MakeWork& makeWork)
{
    if (_mostWorkers > 1)
        _ended = FileDescriptor(::eventfd(0, EFD_CLOEXEC));
    while (_workers.size() < _mostWorkers)
    {
        _workers.push_back(std::make_unique<Worker>(*this, _dialect));
        _workers.back()->Prepare(source, makeWork);
    }
    for (std::size_t i = 1; i < _workers.size(); ++i)
        static_cast<void>(_workers[i]->Create());
}

void Passage::_WaitForOthers()
{
    for (std::size_t i = 1; i < _workers.size(); ++i)
        static_cast<void>(_workers[i]->Wait());
}

void Passage::_PassBlocks(Worker& worker)
{
    while (_Take(worker))
    {
        worker.Work();
        if (!_Write(worker))
            return;
    }
}

// Reads a block. @return false at the end of the input.
bool Passage::_Read(Worker& worker)
{
    if (_isReadingOver || !_reader.NextBlock(worker.GetBlock()))
    {
        _isReadingOver = true;
        return false;
    }
    worker.Begin(_nextRead++, _input.GetShareRead());
    return true;
}

// The same for one worker of several. A failure has its place in the order of the blocks.
bool Passage::_Take(Worker& worker)
{
    const nxMutexGuard guard(_reading);
    if (_HasFailed())
        return false;
    try
    {
        return _Read(worker);
    }
    catch (...)
    {
        _isReadingOver = true;
        worker.Begin(_nextRead++, std::current_exception());
        return true;
    }
}

// @return false if a failure ended the work.
bool Passage::_Write(Worker& worker)
{
    if (!_AwaitTurn(worker.GetNumber()))
        return false;
    try
    {
        worker.Write();
        _EndTurn();
        return true;
    }
    catch (...)
    {
        _Fail(std::current_exception());
        return false;
    }
}

bool Passage::_AwaitTurn(std::uint64_t number)
{
    const nxMutexGuard guard(_turn);
    while (_failure == nullptr && _nextWritten != number)
        static_cast<void>(_turn.WaitFor(std::chrono::seconds(1)));
    return _failure == nullptr;
}

void Passage::_EndTurn()
{
    for (bool isFlushed = false;; isFlushed = true)
    {
        {
            const nxMutexGuard guard(_turn);
            if (isFlushed || _flushBefore != _nextWritten + 1)
            {
                ++_nextWritten;
                static_cast<void>(_turn.SignalAll());
                return;
            }
        }
        _Flush();
    }
}

void Passage::_Fail(std::exception_ptr failure)
{
    const nxMutexGuard guard(_turn);
    _failure = std::move(failure);
    static_cast<void>(_turn.SignalAll());
    if (_ended.IsOpen())
        static_cast<void>(::eventfd_write(_ended.Get(), 1));  // cannot fail: it is the only one
}

bool Passage::_HasFailed()
{
    const nxMutexGuard guard(_turn);
    return _failure != nullptr;
}

void Passage::_Flush()
{
    _output.Flush();
    _report.Flush();
}

// Hands over all rows that were read, now or when they are written.
void Passage::_FlushBeforeWaiting()
{
    {
        const nxMutexGuard guard(_turn);
        if (_nextWritten != _nextRead)
        {
            _flushBefore = _nextRead;
            return;
        }
    }
    _Flush();
}

// The source of the blocks, which are read under the lock. A failure of another worker ends the input.
std::size_t Passage::_ReadInput(char* buffer, std::size_t size)
{
    if (_input.WouldWait())
    {
        _FlushBeforeWaiting();
        if (_ended.IsOpen() && !_input.Await(_ended.Get()))
            return 0;
    }
    const std::size_t count = _input.Read(buffer, size);
    if (_isAtStart)
        if (const std::string conversion = GetConversion({buffer, count}); !conversion.empty())
            throw FileFailure("1: " + conversion);
    _isAtStart = false;
    return count;
}
}  // namespace nxtick
