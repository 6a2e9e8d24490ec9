// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogFile.h"

#include <cerrno>
#include <utility>

#include "core/log/internal/nxLogErrorLine.h"
#include "core/log/internal/nxLogFileFigures.h"
#include "core/log/internal/nxLogForms.h"
#include "core/log/internal/nxLogLevelState.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogLine.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxDirectory.h"
#include "core/platform/nxNanoseconds.h"
#include "core/platform/nxStandardStream.h"
#include "core/process/inline/nxConfigurationKeys.h"
#include "core/time/nxTimeStamp.h"

namespace
{
constexpr const char* fileDeviceSource = "core/trunk/nxFileLogDevice";

std::string LostLinesText(std::uint64_t lost)
{
    return "Lines lost while the log file could not be written: " + std::to_string(lost);
}
}  // namespace

nxLogFile::Plan nxLogFile::Plan::Read(const char* defaultDirectory, std::uint64_t limit,
                                      const nxLogRetention& retention)
{
    return {nxLogSettings::Read(), nxLogFileNames::ReadApplication(), defaultDirectory, limit,
            nxLogRetention::Read(retention)};
}

void nxLogFile::_SetPlan(const Plan& plan)
{
    _settings = plan.settings;
    _limit = plan.limit;
    _names.Set(_settings.directory, plan.defaultDirectory, plan.application);
    _names.ReadProcess();
    _keeper.Set({_names.GetRoot(), _names.GetFolder(), _names.GetApplication()}, plan.retention);
    if (!_file.SetBufferSize(static_cast<std::size_t>(_settings.fileBufferMegabytes) << 20))
        nxLogErrorLine::Tell("Failed to set a buffer for the log file, performance may be degraded.");
    _isCreated = true;
    _openingFailureIsTold = false;
    _openDirectoryIsTold = false;
}

bool nxLogFile::Create(const Plan& plan)
{
    _SetPlan(plan);
    if (_settings.directory.empty())
        nxLogErrorLine::Tell(std::string("No Log Directory defined - use the ") + QRX_LOG_DIRECTORY +
                             " environment variable. Logging to " + plan.defaultDirectory);
    _MustHandOver(true, nxClock::MonotonicNanoseconds());
    const bool isOpen = _StartNextFile();
    _keeper.Work(nxLogLimits::RetentionSlice);
    return isOpen;
}

void nxLogFile::CreateInChild(const Plan& plan) { _SetPlan(plan); }

void nxLogFile::RefreshNameParts(const Plan& plan)
{
    if (!_isCreated)
        _names.Set(plan.settings.directory, plan.defaultDirectory, plan.application);
    _names.ReadProcess();
}

// Enters one directory after the other from the configured one on: those below it may have been made by another user.
int nxLogFile::_OpenDirectory(nxDirectory& directory, const std::string& date) const
{
    int error = directory.Open(_names.GetRoot());
    for (const std::string& name : {_names.GetFolder(), date})
        if (error == 0 && !name.empty())
            error = directory.Enter(name);
    return error;
}

// Creates a file under the first free name and moves on to the next number. @return the system's error number.
int nxLogFile::_TryNextNames(const nxDirectory& directory, const std::string& date, nxFile& file, std::string& name)
{
    constexpr unsigned attempts = 10'000;
    int error = EEXIST;
    for (unsigned i = 0; i < attempts && error == EEXIST; ++i)
    {
        name = _names.GetNext(date);
        error = file.CreateNew(directory, name);
        if (error == 0 || error == EEXIST)
            _names.GoOn();
    }
    return error;
}

// Opens the next file. The file that is open stays open when this fails. @return whether it did not.
bool nxLogFile::_StartNextFile()
{
    _nextCheck = nxClock::MonotonicNanoseconds() + nxLogLimits::MaintenanceInterval;
    _mayOpen = false;
    _names.ReadProcess();
    // Read once, because the file's name and its directory show the same date.
    const std::string date = nxLogFileNames::GetToday();
    std::string name = _names.GetNext(date);
    nxDirectory directory;
    nxFile file;
    int error = _OpenDirectory(directory, date);
    if (error != 0 && !_openingFailureIsTold)
        nxLogErrorLine::Tell("Failed to create directory " + _names.GetDirectory(date) +
                             ", errno: " + std::to_string(error));
    if ((error == EPERM || error == ELOOP) && !_openingFailureIsTold)
        nxLogErrorLine::Tell(
            "Directories for log files must be this user's or root's, no links, and not for everybody to write.");
    if (error == 0)
        error = _TryNextNames(directory, date, file, name);
    if (error != 0)
    {
        if (!std::exchange(_openingFailureIsTold, true))
        {
            nxLogErrorLine::Tell("Failed to create log file. Filename: " + name);
            nxLogFileFigures::Add(nxLogFileFigures::OpeningErrors);
        }
        return false;
    }
    _openingFailureIsTold = false;
    _mayOpen = true;
    _BeginFile(std::move(file), name, date);
    if (directory.IsOpenToOthers() && !std::exchange(_openDirectoryIsTold, true))
        _Report(NX_LOG_LEVEL_WARNING, __LINE__,
                "Others may remove or exchange log files. Directory: " + _names.GetDirectory(date));
    return true;
}

void nxLogFile::_BeginFile(nxFile&& file, const std::string& name, const std::string& date)
{
    nxLogFileFigures::Add(nxLogFileFigures::Opened);
    const bool isRotation = _file.IsOpen();
    if (isRotation)
    {
        nxLogFileFigures::Add(nxLogFileFigures::Rotations);
        _Report(NX_LOG_LEVEL_INFO, __LINE__, "Closing log file: " + _fileName,
                nxField("file", _fileName, nxFieldLines::Json));
        _file.Flush();
    }
    _file.Take(std::move(file));
    const std::string previous = std::exchange(_fileName, name);
    _date = date;
    _ownBytes = 0;
    _fateIsTold = false;
    if (!previous.empty())
        _Report(NX_LOG_LEVEL_INFO, __LINE__,
                "Successfully opened log file: " + _fileName + ", Previous log file: " + previous,
                nxField("file", _fileName, nxFieldLines::Json), nxField("previous", previous, nxFieldLines::Json));
    if (std::exchange(_closingIsUntold, false))
        _Report(NX_LOG_LEVEL_WARNING, __LINE__,
                "Log file was closed by other code of the process, lines may be lost: " + previous);
    _keeper.Begin();
    if (isRotation)
        _keeper.Work(nxLogLimits::RetentionSliceAtRotation);
}

void nxLogFile::Reopen()
{
    if (!_isCreated)
        return;
    _StartNextFile();
    _TellFailures();
}

// Writes a record of the device itself. @param fields are for lines of JSON.
template <class... Fields>
void nxLogFile::_Report(const nxLogLevelEnum& level, unsigned line, const std::string& text, const Fields&... fields)
{
    if (!nxLogLevelState::ShouldLog(level.GetEnumValue(), fileDeviceSource))
        return;
    nxLog record(level, fileDeviceSource, line, nxTimeStamp::Now());
    ((record << text) << ... << fields);
    std::string lines;
    nxLogLine::Append(lines, record, nxLogForms::GetFileStyle());
    const std::uint64_t before = _file.GetSize();
    _file.Append(lines, true);
    _ownBytes += _file.GetSize() - before;
}

// Once a second: has the file been removed, can it be written again?
void nxLogFile::Maintain(std::int64_t now)
{
    if (!_isCreated || now + nxLogLimits::UpkeepSlack < _nextCheck)
        return;
    _nextCheck = now + nxLogLimits::MaintenanceInterval;
    _mayOpen = true;
    nxStandardStream::GetErrors().Look();
    _Look();
    if (_file.GetError() != 0)
        _file.Flush();
    _TellFailures();
    _keeper.Work(nxLogLimits::RetentionSlice);
}

// Starts the next file if this one is no longer there under its name, or too large.
void nxLogFile::_Look()
{
    if (_file.IsOpen())
    {
        const std::uint64_t before = _file.GetSize();
        const nxFile::Fate fate = _file.Look();
        if (_file.GetSize() < before)
            _ownBytes = 0;  // the file was truncated
        if (fate == nxFile::Fate::Sound && !_IsBeyondLimit())
            return;
        if (fate != nxFile::Fate::Sound)
            _TellFate(fate);
        if (fate == nxFile::Fate::Removed)
            _file.CloseFile();
    }
    if (_StartNextFile())
        _file.Flush();
}

void nxLogFile::_TellFate(nxFile::Fate fate)
{
    const char* const what = fate == nxFile::Fate::Removed   ? "removed"
                             : fate == nxFile::Fate::Renamed ? "renamed or exchanged"
                                                             : "closed by other code of the process";
    _closingIsUntold = _closingIsUntold || fate == nxFile::Fate::Closed;
    if (!std::exchange(_fateIsTold, true))
        nxLogErrorLine::Tell(std::string("Log file was ") + what + ". Filename: " + _fileName);
}

// Tells on the error stream that a failure begins, and in the log after its end what was lost.
void nxLogFile::_TellFailures()
{
    if (!_file.IsOpen())
        return;
    const int error = _file.GetError();
    if (error != 0)
    {
        if (!std::exchange(_writingFailureIsTold, true))
        {
            nxLogErrorLine::Tell("Failed to write log file " + _fileName + ", errno: " + std::to_string(error));
            nxLogFileFigures::Add(nxLogFileFigures::WritingErrors);
        }
        return;
    }
    _writingFailureIsTold = false;
    if (const std::uint64_t lost = _file.GetLostLines() - _toldLostLines; lost != 0)
    {
        _toldLostLines += lost;
        _Report(NX_LOG_LEVEL_WARNING, __LINE__, LostLinesText(lost), nxField("lost", lost, nxFieldLines::Json));
    }
}

bool nxLogFile::_MustHandOver(bool atOnce, std::int64_t now)
{
    const bool must = atOnce || _settings.forceFlush || now >= _nextHandOver;
    if (must)
        _nextHandOver = now + static_cast<std::int64_t>(_settings.secondsBetweenFlushes) * nxNanoseconds::PerSecond;
    return must;
}

bool nxLogFile::_IsBeyondLimit() const
{
    return _limit != 0 && _mayOpen && _file.IsOpen() && _file.GetError() == 0 && _file.GetSize() > _ownBytes + _limit;
}

// The size of the lines up to and including the one with which the file grows beyond its limit.
std::size_t nxLogFile::_SizeUpToLimit(std::string_view lines) const
{
    if (_limit == 0 || !_mayOpen || !_file.IsOpen())
        return lines.size();
    const std::uint64_t most = _ownBytes + _limit;
    const std::uint64_t room = _file.GetSize() < most ? most - _file.GetSize() : 0;
    return room < lines.size() ? lines.find('\n', static_cast<std::size_t>(room)) + 1 : lines.size();
}

void nxLogFile::Write(std::string_view lines, bool atOnce, long long second)
{
    if (!_isCreated)
        return;
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    Maintain(now);
    // Requires both dates to differ; a late record, or one with a time chosen by the caller, would otherwise switch files
    // back and forth.
    if (_settings.recreateOnChangeOfDate && _mayOpen && _file.IsOpen() && nxLogFileNames::GetDate(second) != _date &&
        nxLogFileNames::GetToday() != _date)
        Reopen();
    const bool handOver = _MustHandOver(atOnce, now);
    while (!lines.empty())
    {
        const std::size_t size = _SizeUpToLimit(lines);
        _AppendAndTell(lines.substr(0, size), handOver);
        lines.remove_prefix(size);
        if (_IsBeyondLimit())
            Reopen();
    }
}

void nxLogFile::_AppendAndTell(std::string_view lines, bool atOnce)
{
    _file.Append(lines, atOnce);
    _MendIfClosed();
    _TellFailures();
}

// Opens another file at once when this one was closed by other code: the process may end before the next check.
void nxLogFile::_MendIfClosed()
{
    if (_file.IsOpen() || _file.GetError() != EBADF || !_mayOpen)
        return;
    _TellFate(nxFile::Fate::Closed);
    if (_StartNextFile())
        _file.Flush();
}

void nxLogFile::WriteRecord(const nxLog& record)
{
    _line.clear();
    nxLogLine::Append(_line, record, nxLogForms::GetFileStyle());
    Write(_line, true, record.GetTimeStamp().GetSeconds());
}

void nxLogFile::Flush()
{
    Maintain(nxClock::MonotonicNanoseconds());
    _file.Flush();
    _MendIfClosed();
    _TellFailures();
}

void nxLogFile::End()
{
    if (!_isCreated)
        return;
    _mayOpen = true;
    // No file is made if no line waits, because the directory may have been removed on purpose.
    if (_file.GetWaitingLines() != 0)
    {
        _Look();
        _file.Flush(true);
        _MendIfClosed();
    }
    _TellFailures();
    const std::uint64_t lost = _file.GetLostLines() + _file.GetWaitingLines() - _toldLostLines;
    if (lost != 0)
        nxLogErrorLine::Tell(LostLinesText(lost));
    _toldLostLines += lost;
}

void nxLogFile::SetRetention(const nxLogRetention& retention)
{
    if (_isCreated)
        _keeper.Set({_names.GetRoot(), _names.GetFolder(), _names.GetApplication()}, retention);
}

void nxLogFile::Destroy() noexcept
{
    _keeper.Stop();
    _file.Close();
    _isCreated = false;
    _fileName.clear();
}

void nxLogFile::ForgetInChild()
{
    _file.Forget();
    _keeper.ForgetInChild();
    _fileName.clear();
    _nextCheck = 0;
    _closingIsUntold = false;
}
