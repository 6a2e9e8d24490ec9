#include "core/log/nxConsoleLogDevice.h"

#include <unistd.h>

#include <algorithm>
#include <new>
#include <string_view>

#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogManager.h"
#include "core/platform/nxFile.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// How many bytes standard output takes.
std::size_t Take(std::string_view text)
{
    std::size_t written = 0;
    nxFile::WriteTo(STDOUT_FILENO, text.data(), text.size(), written);
    return written;
}
}  // namespace

nxConsoleLogDevice::nxConsoleLogDevice() : nxLogDevice(static_cast<nxLogLineSink*>(this)) {}

nxConsoleLogDevice::~nxConsoleLogDevice() { nxLogManager::GetInstance().UnregisterLogDevice(this); }

nxConsoleLogDevice& nxConsoleLogDevice::GetInstance()
{
    static nxConsoleLogDevice& device = *new nxConsoleLogDevice;
    return device;
}

nxLogLineStyle nxConsoleLogDevice::GetLineStyle() const
{
    if (IsVerboseOutput())
        return {nxLogLineStyle::Full, false};
    const bool withTime = _shortForm.load(std::memory_order_relaxed) == ShortForm::Time;
    return {withTime ? nxLogLineStyle::TimeAndText : nxLogLineStyle::LevelAndText, false};
}

void nxConsoleLogDevice::Write(const nxLog& record)
try
{
    std::string line;
    nxLogLine::Append(line, record, GetLineStyle());
    _Write(line);
}
catch (const std::bad_alloc&)
{
    _lostLines.fetch_add(1, std::memory_order_relaxed);
}

void nxConsoleLogDevice::WriteLines(const nxLogLineBatch& batch)
try
{
    _Write({batch.text, batch.size});
}
catch (const std::bad_alloc&)
{
    _lostLines.fetch_add(1, std::memory_order_relaxed);
}

// A line that is begun is ended first, next time; the other lines that are not taken are lost.
void nxConsoleLogDevice::_Write(std::string_view lines)
{
    const nxMutexGuard guard(_mutex);
    _rest.erase(0, Take(_rest));
    const std::size_t taken = _rest.empty() ? Take(lines) : 0;
    std::string_view left = lines.substr(taken);
    if (taken != 0 && lines[taken - 1] != '\n')
    {
        const std::size_t end = left.find('\n') + 1;
        _rest = left.substr(0, end);
        left.remove_prefix(end);
    }
    _lostLines.fetch_add(static_cast<std::uint64_t>(std::count(left.begin(), left.end(), '\n')),
                         std::memory_order_relaxed);
}

void nxConsoleLogDevice::Flush() {}

void nxConsoleLogDevice::Destroy()
{
    constexpr std::int64_t second = 1'000'000'000;
    nxLogWriter::GetInstance().WriteOut(10 * second, 2 * second);
    nxLogManager::GetInstance().UnregisterLogDevice(this);
}

void nxConsoleLogDevice::BeforeFork() { (void)_mutex.Lock(); }

void nxConsoleLogDevice::AfterForkInParent() { (void)_mutex.Unlock(); }

void nxConsoleLogDevice::AfterForkInChild()
{
    new (&_mutex) nxMutex;
    _rest.clear();
}
