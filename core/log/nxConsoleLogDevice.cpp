// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxConsoleLogDevice.h"

#include <algorithm>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "core/log/internal/nxLogDeviceBook.h"
#include "core/log/internal/nxLogForkLock.h"
#include "core/log/internal/nxLogForms.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLog.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogManager.h"
#include "core/platform/nxOneInstance.h"
#include "core/platform/nxStandardStream.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
void CountLostLines(std::atomic<std::uint64_t>& count, const nxLogDevice* device, std::uint64_t lines) noexcept
{
    count.fetch_add(lines, std::memory_order_relaxed);
    nxLogDeviceBook::GetInstance().CountLost(device, lines);
}
}  // namespace

nxConsoleLogDevice::nxConsoleLogDevice() : nxLogDevice(static_cast<nxLogLineSink*>(this))
{
    nxLogManager::SetDeviceName(this, "console");
}

nxConsoleLogDevice::~nxConsoleLogDevice() { nxLogManager::GetInstance().UnregisterLogDevice(this); }

nxConsoleLogDevice& nxConsoleLogDevice::GetInstance()
{
    static constinit nxOneInstance<nxConsoleLogDevice> device;
    return device.Get();
}

nxLogLineStyle nxConsoleLogDevice::GetLineStyle() const
{
    if (IsVerboseOutput())
        return nxLogForms::GetConsoleStyle(nxLogLineStyle::Full);
    const bool withTime = _shortForm.load(std::memory_order_relaxed) == ShortForm::Time;
    return nxLogForms::GetConsoleStyle(withTime ? nxLogLineStyle::TimeAndText : nxLogLineStyle::LevelAndText);
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
    CountLostLines(_lostLines, this, 1);
}

void nxConsoleLogDevice::WriteLines(const nxLogLineBatch& batch)
try
{
    _Write({batch.text, batch.size});
}
catch (const std::bad_alloc&)
{
    CountLostLines(_lostLines, this, 1);
}

// When standard output takes only the beginning of a line, the next call writes the rest of it first. The other lines that
// it does not take are lost.
void nxConsoleLogDevice::_Write(std::string_view lines)
{
    const nxMutexGuard guard(_mutex);
    nxStandardStream& output = nxStandardStream::GetOutput();
    _rest.erase(0, output.Write(_rest));
    const std::size_t taken = _rest.empty() ? output.Write(lines) : 0;
    std::string_view left = lines.substr(taken);
    if (taken != 0 && lines[taken - 1] != '\n')
    {
        const std::size_t end = left.find('\n') + 1;
        _rest = left.substr(0, end);
        left.remove_prefix(end);
    }
    if (!left.empty())
        CountLostLines(_lostLines, this, static_cast<std::uint64_t>(std::count(left.begin(), left.end(), '\n')));
}

void nxConsoleLogDevice::Flush() {}

void nxConsoleLogDevice::Destroy()
{
    nxLogWriter::GetInstance().WriteOutAtEnd();
    nxLogManager::GetInstance().UnregisterLogDevice(this);
}

void nxConsoleLogDevice::BeforeFork() { _isLockedForFork = nxLogForkLock::Take(_mutex); }

void nxConsoleLogDevice::AfterForkInParent()
{
    nxLogForkLock::GiveBack(_mutex, std::exchange(_isLockedForFork, false));
}

void nxConsoleLogDevice::AfterForkInChild()
{
    const bool isWhole = std::exchange(_isLockedForFork, false);
    nxLogForkLock::RenewInChild(_mutex, isWhole);
    if (isWhole)
        _rest.clear();
    else
        new (&_rest) std::string;  // another thread of the parent was changing it
}
