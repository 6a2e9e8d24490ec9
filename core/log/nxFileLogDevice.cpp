#include "core/log/nxFileLogDevice.h"

#include <errno.h>
#include <unistd.h>

#include <algorithm>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "core/app/nxApplicationData.h"
#include "core/app/nxConfigurationKeys.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSettings.h"
#include "core/platform/nxClock.h"
#include "core/platform/nxFile.h"
#include "core/platform/nxLineFile.h"
#include "core/platform/nxLocalZone.h"
#include "core/platform/nxProcess.h"
#include "core/thread/nxMutexGuard.h"
#include "core/time/nxCalendar.h"
#include "core/time/nxTimeStamp.h"

namespace
{
constexpr const char* sourceFile = "core/trunk/nxFileLogDevice";
constexpr nxLogLineStyle fileStyle{nxLogLineStyle::Full, true};
constexpr std::int64_t nanosecondsPerSecond = 1'000'000'000;
// How long the end of the device waits for queued records, as the end of the process does.
constexpr std::int64_t longestDrain = 10 * nanosecondsPerSecond;
constexpr std::int64_t longestStall = 2 * nanosecondsPerSecond;

void Complain(const std::string& text)
{
    std::size_t written = 0;
    nxFile::WriteTo(STDERR_FILENO, text.data(), text.size(), written);
}

void AppendTwo(std::string& text, unsigned number)
{
    text += static_cast<char>('0' + number / 10);
    text += static_cast<char>('0' + number % 10);
}

// "05Mar2024", the local date of a moment; empty for one that no calendar reaches.
std::string DateText(long long second)
{
    nxLocalMinute minute;
    if (!nxLocalZone::FindAndCheck(second, minute))
        return "";
    std::string text;
    AppendTwo(text, minute.day);
    text += nxCalendar::GetMonthName(minute.month);
    return text + std::to_string(minute.year);
}

// "090703", the local time of a moment.
std::string TimeText(long long second)
{
    nxLocalMinute minute;
    if (!nxLocalZone::FindAndCheck(second, minute))
        return "000000";
    std::string text;
    AppendTwo(text, minute.hour);
    AppendTwo(text, minute.minute);
    AppendTwo(text, minute.firstSecond + static_cast<unsigned>(second - minute.begin));
    return text;
}

// The application's name, or that of its program, as a file name can have it.
std::string ApplicationText()
{
    constexpr std::size_t longestName = 64;
    std::string name = nxApplicationData::GetApplicationName();
    if (name.empty())
        name = program_invocation_short_name;
    name.resize(std::min(name.size(), longestName));
    for (char& c : name)
    {
        const bool isPlain = ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || ('0' <= c && c <= '9') || c == '-';
        if (!isPlain)
            c = '-';
    }
    return name.empty() ? "application" : name;
}
}  // namespace

// What the mutex guards.
class [[gnu::visibility("hidden")]] nxFileLogDevice::State
{
public:
    bool IsCreated() const { return _isCreated; }
    bool IsOpen() const { return _file.IsOpen(); }
    bool Create(const nxValueWrapper<unsigned long long>& maximumFileSize, const nxLogSettings& settings,
                const std::string& application);
    void Prepare(const nxLogSettings& settings, const std::string& application);
    void Write(std::string_view lines, bool atOnce, long long second);
    void WriteRecord(const nxLog& record);
    void Flush();
    void Maintain(std::int64_t now);
    void Reopen();
    void Destroy();
    void ForgetInChild();

    std::string GetPrefix() const { return GetPrefix(GetDirectory(Today())); }
    std::string GetNextFileName() const { return GetNextFileName(GetDirectory(Today())); }
    std::string GetFileName() const { return _file.IsOpen() ? _fileName : std::string(); }
    std::uint64_t GetLostLines() const { return _file.GetLostLines(); }

private:
    static std::string Today() { return DateText(nxClock::Now().seconds); }
    std::string GetDirectory(const std::string& date) const;
    std::string GetPrefix(const std::string& directory) const { return directory + '/' + _application; }
    std::string GetNextFileName(const std::string& directory) const;
    void ReadProcess();
    bool OpenNext();
    int CreateNext(const std::string& directory);
    void Put(std::string_view lines, bool atOnce);
    void Report(const nxLogLevelEnum& level, unsigned line, const std::string& text);
    void TellFailures();
    std::size_t SizeUpToLimit(std::string_view lines) const;
    bool IsBeyondLimit() const;
    bool MustHandOver(bool atOnce, std::int64_t now);

    nxLineFile _file;
    bool _isCreated = false;
    nxLogSettings _settings;
    std::string _application;
    unsigned _process = 0;        // the one that the next two belong to
    std::string _startTime;       // "090703"
    unsigned _sequence = 1;       // of the next file
    std::uint64_t _limit = 0;     // bytes; 0 for none
    std::uint64_t _ownBytes = 0;  // those of the device's own records in the file, which do not count for the limit
    std::string _fileName;        // the last that was open
    std::string _date;            // on which it was opened, "05Mar2024"
    std::int64_t _nextCheck = 0;  // when to see again whether all is well, on the monotonic clock
    std::int64_t _nextHandOver = 0;
    bool _openingFailureIsTold = false;
    bool _writingFailureIsTold = false;
    std::uint64_t _toldLostLines = 0;
    std::string _line;
};

bool nxFileLogDevice::State::Create(const nxValueWrapper<unsigned long long>& maximumFileSize,
                                    const nxLogSettings& settings, const std::string& application)
{
    if (_file.IsOpen())
        return false;
    _settings = settings;
    _application = application;
    ReadProcess();
    _limit = maximumFileSize.IsValid() ? static_cast<unsigned long long>(maximumFileSize) : 0;
    if (!_file.SetBufferSize(static_cast<std::size_t>(_settings.fileBufferMegabytes) << 20))
        Complain("Failed to set a buffer for the log file, performance may be degraded.\n");
    if (_settings.directory.empty())
        Complain(std::string("No Log Directory defined - use the ") + QRX_LOG_DIRECTORY +
                 " environment variable. Logging to " + DefaultDirectory + "\n");
    _isCreated = true;
    _openingFailureIsTold = false;
    MustHandOver(true, nxClock::MonotonicNanoseconds());
    return OpenNext();
}

// Reads what names are made of, before Create() has.
void nxFileLogDevice::State::Prepare(const nxLogSettings& settings, const std::string& application)
{
    if (!_isCreated)
    {
        _settings = settings;
        _application = application;
    }
    ReadProcess();
}

// Anew in a forked child.
void nxFileLogDevice::State::ReadProcess()
{
    const unsigned process = nxProcess::GetID();
    if (process == _process)
        return;
    _process = process;
    _startTime = TimeText(nxProcess::GetStartTime().seconds);
    _sequence = 1;
}

std::string nxFileLogDevice::State::GetDirectory(const std::string& date) const
{
    return (_settings.directory.empty() ? DefaultDirectory : _settings.directory) + '/' + date;
}

std::string nxFileLogDevice::State::GetNextFileName(const std::string& directory) const
{
    return GetPrefix(directory) + '_' + _startTime + '_' + std::to_string(_process) + '_' + std::to_string(_sequence) +
           ".log";
}

// Opens a file and goes on to the next number. @return the system's error number.
int nxFileLogDevice::State::CreateNext(const std::string& directory)
{
    constexpr unsigned attempts = 10'000;
    int error = EEXIST;
    for (unsigned i = 0; i < attempts && error == EEXIST; ++i)
    {
        _fileName = GetNextFileName(directory);
        error = _file.CreateNew(_fileName);
        if (error == 0 || error == EEXIST)
            ++_sequence;
    }
    return error;
}

bool nxFileLogDevice::State::OpenNext()
{
    ReadProcess();
    // Read once: a file lies in the directory of the date that it is said to have.
    const std::string date = Today();
    const std::string directory = GetDirectory(date);
    const std::string previous = std::exchange(_fileName, std::string());
    const int directoryError = nxFile::CreateDirectories(directory);
    if (directoryError != 0 && !_openingFailureIsTold)
        Complain("Failed to create directory " + directory + ", errno: " + std::to_string(directoryError) + '\n');
    const int error = CreateNext(directory);
    _nextCheck = nxClock::MonotonicNanoseconds() + nanosecondsPerSecond;
    if (error != 0)
    {
        if (!_openingFailureIsTold)
            Complain("Failed to create log file. Filename: " + _fileName + '\n');
        _openingFailureIsTold = true;
        _fileName = previous;
        return false;
    }
    _openingFailureIsTold = false;
    _date = date;
    _ownBytes = 0;
    if (!previous.empty())
        Report(NX_LOG_LEVEL_INFO, __LINE__,
               "Successfully opened log file: " + _fileName + ", Previous log file: " + previous);
    return true;
}

void nxFileLogDevice::State::Reopen()
{
    if (!_isCreated)
        return;
    if (_file.IsOpen())
    {
        Report(NX_LOG_LEVEL_INFO, __LINE__, "Closing log file: " + _fileName);
        _file.Flush();
    }
    OpenNext();
    TellFailures();
}

// Writes a record of the device itself.
void nxFileLogDevice::State::Report(const nxLogLevelEnum& level, unsigned line, const std::string& text)
{
    if (!nxLogManager::ShouldLog(level))
        return;
    nxLog record(level, sourceFile, line, nxTimeStamp::Now());
    record << text;
    std::string lines;
    nxLogLine::Append(lines, record, fileStyle);
    const std::uint64_t before = _file.GetSize();
    _file.Append(lines, true);
    _ownBytes += _file.GetSize() - before;
}

// Sees once a second to what can go wrong between two lines.
void nxFileLogDevice::State::Maintain(std::int64_t now)
{
    if (!_isCreated || now < _nextCheck)
        return;
    _nextCheck = now + nanosecondsPerSecond;
    if (_file.IsUnlinked())
        Complain("Log file was removed. Filename: " + _fileName + '\n');
    const bool isGone = !_file.IsOpen() || _file.IsUnlinked();
    if (isGone ? OpenNext() : _file.GetError() != 0)
        _file.Flush();
    TellFailures();
}

// Tells the beginning of a failure on the error stream, and in the log afterwards what was lost.
void nxFileLogDevice::State::TellFailures()
{
    const int error = _file.GetError();
    if (error != 0)
    {
        if (!_writingFailureIsTold)
            Complain("Failed to write log file " + _fileName + ", errno: " + std::to_string(error) + '\n');
        _writingFailureIsTold = true;
        return;
    }
    if (!_file.IsOpen())
        return;
    _writingFailureIsTold = false;
    if (const std::uint64_t lost = _file.GetLostLines() - _toldLostLines; lost != 0)
    {
        _toldLostLines += lost;
        Report(NX_LOG_LEVEL_WARNING, __LINE__,
               "Lines lost while the log file could not be written: " + std::to_string(lost));
    }
}

bool nxFileLogDevice::State::MustHandOver(bool atOnce, std::int64_t now)
{
    const bool must = atOnce || _settings.forceFlush || now >= _nextHandOver;
    if (must)
        _nextHandOver = now + static_cast<std::int64_t>(_settings.secondsBetweenFlushes) * nanosecondsPerSecond;
    return must;
}

bool nxFileLogDevice::State::IsBeyondLimit() const
{
    return _limit != 0 && _file.IsOpen() && _file.GetError() == 0 && _file.GetSize() - _ownBytes > _limit;
}

// The size of the lines up to the one with which the file grows beyond its limit.
std::size_t nxFileLogDevice::State::SizeUpToLimit(std::string_view lines) const
{
    if (_limit == 0)
        return lines.size();
    const std::uint64_t size = _file.GetSize() - _ownBytes;
    const std::uint64_t room = size < _limit ? _limit - size : 0;
    return room < lines.size() ? lines.find('\n', static_cast<std::size_t>(room)) + 1 : lines.size();
}

void nxFileLogDevice::State::Write(std::string_view lines, bool atOnce, long long second)
{
    if (!_isCreated)
        return;
    const std::int64_t now = nxClock::MonotonicNanoseconds();
    Maintain(now);
    // Both, so that neither a late record nor one with a time of the caller's own brings files to and fro.
    if (_settings.recreateOnChangeOfDate && _file.IsOpen() && DateText(second) != _date && Today() != _date)
        Reopen();
    const bool handOver = MustHandOver(atOnce, now);
    while (!lines.empty())
    {
        const std::size_t size = SizeUpToLimit(lines);
        Put(lines.substr(0, size), handOver);
        lines.remove_prefix(size);
        if (IsBeyondLimit())
            Reopen();
    }
}

void nxFileLogDevice::State::Put(std::string_view lines, bool atOnce)
{
    _file.Append(lines, atOnce);
    TellFailures();
}

void nxFileLogDevice::State::WriteRecord(const nxLog& record)
{
    _line.clear();
    nxLogLine::Append(_line, record, fileStyle);
    Write(_line, true, record.GetTimeStamp().GetSeconds());
}

void nxFileLogDevice::State::Flush()
{
    Maintain(nxClock::MonotonicNanoseconds());
    _file.Flush();
    TellFailures();
}

void nxFileLogDevice::State::Destroy()
{
    _file.Close();
    _isCreated = false;
    _fileName.clear();
}

void nxFileLogDevice::State::ForgetInChild()
{
    _file.Forget();
    _fileName.clear();
    _nextCheck = 0;
}

namespace
{
// Made before the device's lock is taken: who forks holds the lock of the environment first and that of the device then.
struct NameParts
{
    const nxLogSettings settings = nxLogSettings::Read();
    const std::string application = ApplicationText();
};

// Devices may not throw; where there is no memory for a line or a file name, that line or file is not written.
template <class Action>
void WithoutThrowing(const Action& action)
{
    try
    {
        action();
    }
    catch (const std::bad_alloc&)
    {
    }
}
}  // namespace

nxFileLogDevice& nxFileLogDevice::GetInstance()
{
    static nxFileLogDevice& device = *new nxFileLogDevice;
    return device;
}

nxFileLogDevice::nxFileLogDevice() : nxLogDevice(static_cast<nxLogLineSink*>(this)), _state(std::make_unique<State>())
{
}

nxFileLogDevice::~nxFileLogDevice() = default;

bool nxFileLogDevice::Create(const nxValueWrapper<unsigned long long>& maximumFileSize)
{
    bool created = false;
    WithoutThrowing(
        [&]
        {
            const NameParts parts;
            const nxMutexGuard guard(_mutex);
            created = _state->Create(maximumFileSize, parts.settings, parts.application);
        });
    nxLogManager::GetInstance().RegisterLogDevice(this);
    return created;
}

void nxFileLogDevice::Write(const nxLog& record)
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _state->WriteRecord(record); });
}

void nxFileLogDevice::WriteLines(const nxLogLineBatch& batch)
{
    const nxMutexGuard guard(_mutex);
    const bool atOnce = batch.worstLevel >= NX_LOG_LEVEL_WARNING;
    WithoutThrowing([&] { _state->Write({batch.text, batch.size}, atOnce, batch.seconds); });
}

void nxFileLogDevice::Maintain()
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _state->Maintain(nxClock::MonotonicNanoseconds()); });
}

void nxFileLogDevice::Flush()
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _state->Flush(); });
}

void nxFileLogDevice::Destroy()
{
    nxLogWriter::GetInstance().WriteOut(longestDrain, longestStall);
    // Then, and without the mutex, which the log's thread may be waiting for inside this device.
    nxLogManager::GetInstance().UnregisterLogDevice(this);
    const nxMutexGuard guard(_mutex);
    _state->Destroy();
}

void nxFileLogDevice::CloseAndReopenLogFile()
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _state->Reopen(); });
}

std::string nxFileLogDevice::GenerateLogDirectoryFilenamePrefix() const
{
    const NameParts parts;
    const nxMutexGuard guard(_mutex);
    _state->Prepare(parts.settings, parts.application);
    return _state->GetPrefix();
}

std::string nxFileLogDevice::GenerateFileName() const
{
    const NameParts parts;
    const nxMutexGuard guard(_mutex);
    _state->Prepare(parts.settings, parts.application);
    return _state->GetNextFileName();
}

std::string nxFileLogDevice::GetFileName() const
{
    const nxMutexGuard guard(_mutex);
    return _state->GetFileName();
}

std::uint64_t nxFileLogDevice::GetLostLines() const
{
    const nxMutexGuard guard(_mutex);
    return _state->GetLostLines();
}

nxLogLineStyle nxFileLogDevice::GetLineStyle() const { return fileStyle; }

void nxFileLogDevice::BeforeFork() { (void)_mutex.Lock(); }

void nxFileLogDevice::AfterForkInParent() { (void)_mutex.Unlock(); }

void nxFileLogDevice::AfterForkInChild()
{
    new (&_mutex) nxMutex;
    _state->ForgetInChild();
}
