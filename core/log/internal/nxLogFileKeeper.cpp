// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFileKeeper.h"

#include <cerrno>

#include "core/log/internal/nxLogFileFigures.h"
#include "core/log/internal/nxLogFileNames.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxDirectoryReader.h"
#include "core/platform/nxFileClaim.h"
#include "core/platform/nxNanoseconds.h"

void nxLogFileKeeper::Set(const nxLogFileSurvey::Place& place, const nxLogRetention& retention)
{
    Stop();
    _place = place;
    if (_retention.compressor != retention.compressor)
        _compressor.Set(retention.compressor);
    _retention = retention;
    _isDue = true;
}

void nxLogFileKeeper::Stop() noexcept
{
    _phase = Phase::Idle;
    _survey.End();
    _oldest.Clear();
    _toCompress.Clear();
}

void nxLogFileKeeper::ForgetInChild() noexcept
{
    Stop();
    _compressor.ForgetInChild();
    _isDue = true;
}

void nxLogFileKeeper::Work(std::int64_t nanoseconds) noexcept
{
    if (!_retention.IsSet() && !_compressor.IsRunning())
        return;
    std::int64_t now = nxClock::MonotonicNanoseconds();
    const std::int64_t end = now + nanoseconds;
    try
    {
        _compressor.Look(_place, now);
        if (_phase != Phase::Idle && !_survey.IsSound())
            Stop();
        if (_phase == Phase::Idle && (_isDue || now >= _nextPass))
            _BeginPass(now);
        for (; _phase != Phase::Idle && now < end; now = nxClock::MonotonicNanoseconds())
            _Step();
        if (_phase == Phase::Idle)
            _CompressNext(now);
    }
    catch (...)
    {
        Stop();
    }
}

void nxLogFileKeeper::_BeginPass(std::int64_t now)
{
    _isDue = false;
    _nextPass = now + nxLogLimits::RetentionInterval;
    _files = _bytes = 0;
    _hasRemoved = false;
    _oldest.Clear();
    _toCompress.Clear();
    _now = nxClock::Now().seconds;
    const bool hasDate = nxLogKeptFile::ReadDay(nxLogFileNames::GetToday(), _today);
    if (_retention.IsSet() && hasDate && _survey.Begin(_place))
        _phase = Phase::Counting;
}

void nxLogFileKeeper::_Step()
{
    if (_phase == Phase::Removing)
        return _RemoveNext();
    switch (_survey.Step(_place))
    {
        case nxLogFileSurvey::Met::Nothing:
            return;
        case nxLogFileSurvey::Met::File:
            return _Count();
        case nxLogFileSurvey::Met::EmptyFolder:
            return _RemoveFolder();
        case nxLogFileSurvey::Met::End:
            return _EndCounting();
    }
}

void nxLogFileKeeper::_EndCounting()
{
    _oldest.EndAdding();
    _toCompress.EndAdding();
    _compressAfter = nxLogKeptFile();
    _phase = Phase::Removing;
}

void nxLogFileKeeper::_Count()
{
    const nxLogKeptFile& file = _survey.GetFile();
    if (_IsTooOld(file) && _Remove(file))
        return;
    ++_files;
    _bytes += file.size;
    if (_retention.files != 0 || _retention.megabytes != 0)
        _oldest.Add(file);
    const bool isForCompression = file.form == nxLogFileForm::Plain && file.size != 0 && _compressAfter < file;
    if (!_retention.compressor.empty() && isForCompression)
        _toCompress.Add(file);
}

bool nxLogFileKeeper::_IsTooOld(const nxLogKeptFile& file) const
{
    constexpr std::int64_t secondsOfDay = 86'400;
    return _retention.days != 0 &&
           _now - file.modified / nxNanoseconds::PerSecond > static_cast<std::int64_t>(_retention.days) * secondsOfDay;
}

bool nxLogFileKeeper::_IsTooMuch() const
{
    return (_retention.files != 0 && _files > _retention.files) ||
           (_retention.megabytes != 0 && _bytes > _retention.megabytes << 20);
}

void nxLogFileKeeper::_RemoveNext()
{
    if (!_IsTooMuch() || _oldest.IsEmpty())
    {
        // Files that found no room among the oldest are for another pass, unless nothing can be removed.
        _isDue = _isDue || (_IsTooMuch() && _oldest.WasFull() && _hasRemoved);
        _phase = Phase::Idle;
        _survey.End();
        _oldest.Clear();
        return;
    }
    const nxLogKeptFile file = _oldest.Take();
    const int error = _survey.EnterFolderOf(file);
    if (error == ENOENT || (error == 0 && _Remove(file)))
    {
        --_files;
        _bytes -= file.size;
        _hasRemoved = true;
    }
}

// Removes the file of the directory that the survey has entered. @return whether it is gone, through this process or another.
bool nxLogFileKeeper::_Remove(const nxLogKeptFile& file)
{
    const std::int64_t age = _now - file.modified / nxNanoseconds::PerSecond;
    if (file.size == 0 && age < nxLogLimits::FreshFileSeconds)
        return false;
    const nxDirectory& folder = _survey.GetFolder();
    const std::string name = file.GetName(_place.application);
    nxFileClaim claim;
    int error = claim.Take(folder, name);
    if (error == 0)
        error = nxDirectoryEntry::RemoveFile(folder, name);
    if (error != 0)
        return error == ENOENT;
    nxLogFileFigures::Add(nxLogFileFigures::Removed);
    nxLogFileFigures::Add(nxLogFileFigures::RemovedBytes, file.size);
    if (file.form != nxLogFileForm::Plain)
        return true;
    // What a compressor has left that was killed would look like a file that is whole.
    for (const nxLogFileForm form : nxLogKeptFile::CompressedForms)
        static_cast<void>(nxDirectoryEntry::RemoveFile(folder, file.GetNameAs(_place.application, form)));
    return true;
}

// Processes in other time zones may be about to open a file in the directory of yesterday.
void nxLogFileKeeper::_RemoveFolder() const
{
    if (_HasLimit() && _survey.GetFile().day < _today - 1)
        static_cast<void>(nxDirectoryEntry::RemoveDirectory(_survey.GetRoot(), _survey.GetFile().GetFolder()));
}

void nxLogFileKeeper::_CompressNext(std::int64_t now)
{
    while (_compressor.MayStart(now) && !_toCompress.IsEmpty())
    {
        const nxLogKeptFile file = _toCompress.Take();
        _compressor.Start(_place, file, now);
        if (!_toCompress.IsEmpty() || !_toCompress.WasFull())
            continue;
        _compressAfter = file;
        _isDue = true;
    }
}
