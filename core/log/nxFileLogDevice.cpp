// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxFileLogDevice.h"

#include <atomic>
#include <string>
#include <utility>
#include <vector>

#include "core/log/internal/nxLogDeviceBook.h"
#include "core/log/internal/nxLogFile.h"
#include "core/log/internal/nxLogFileFigures.h"
#include "core/log/internal/nxLogForkLock.h"
#include "core/log/internal/nxLogForms.h"
#include "core/log/internal/nxLogLimits.h"
#include "core/log/internal/nxLogTimedLock.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogRetention.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxOneInstance.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// Devices may not throw; a line or file for whose text or name there is no memory is not written.
template <class Action>
void WithoutThrowing(const Action& action)
{
    try
    {
        action();
    }
    catch (...)
    {
    }
}

// The default order, because it is set and read once.
constinit std::atomic<void (*)()> endOfDevice{nullptr};

// After the queue was written out, and after all exit handlers and destructors.
[[gnu::destructor(101)]] void EndAtUnload()
{
    if (void (*const end)() = endOfDevice.load(); end != nullptr)
        end();
}
}  // namespace

struct nxFileLogDevice::Parts
{
    /// @param mutex the device's, which guards the file; not in a child that was just forked.
    nxLogFile& GetFile([[maybe_unused]] const nxMutex& mutex) const NX_REQUIRES(mutex) { return *file; }
    /// That of the program, for the next plan. @param mutex the device's, which guards it.
    nxLogRetention& GetRetention([[maybe_unused]] const nxMutex& mutex) NX_REQUIRES(mutex) { return retention; }

    /// A child that is forked at any moment finds a plan that is whole.
    void Publish(std::unique_ptr<const nxLogFile::Plan> next) { delete plan.exchange(next.release()); }

    std::unique_ptr<nxLogFile> file = std::make_unique<nxLogFile>();
    /// Counts the lines that were lost since the last call. Called with the mutex held.
    void CountLost(const nxLogDevice* device)
    {
        const std::uint64_t lost = file->GetLostLines();
        if (const std::uint64_t before = std::exchange(countedLines, lost); lost > before)
            nxLogDeviceBook::GetInstance().CountLost(device, lost - before);
    }

    std::uint64_t countedLines = 0;
    // Exchanged and read under the device's mutex, and read in a child, which has one thread. The default order, because it
    // changes seldom.
    std::atomic<const nxLogFile::Plan*> plan{nullptr};
    nxLogRetention retention;      // see GetRetention()
    bool isLockedForFork = false;  // by the thread that forks
};

nxFileLogDevice& nxFileLogDevice::GetInstance()
{
    static constinit nxOneInstance<nxFileLogDevice> device;
    return device.Get();
}

nxFileLogDevice::nxFileLogDevice() : nxLogDevice(static_cast<nxLogLineSink*>(this)), _parts(std::make_unique<Parts>())
{
    nxLogManager::SetDeviceName(this, "file");
    endOfDevice.store(&nxFileLogDevice::_EndProcess);
}

nxFileLogDevice::~nxFileLogDevice() = default;

bool nxFileLogDevice::Create(const nxValueWrapper<unsigned long long>& maximumFileSize)
{
    return Create(maximumFileSize, nullptr);
}

bool nxFileLogDevice::Create(const nxValueWrapper<unsigned long long>& maximumFileSize, nxLogDevice* other)
{
    return Create(maximumFileSize, {&other, 1});
}

bool nxFileLogDevice::Create(const nxValueWrapper<unsigned long long>& maximumFileSize,
                             std::span<nxLogDevice* const> others)
{
    bool created = false;
    WithoutThrowing(
        [&]
        {
            nxLogRetention retention;
            {
                const nxMutexGuard guard(_mutex);
                retention = _parts->GetRetention(_mutex);
            }
            // Read before the device's lock is taken, so that the device is not locked while the environment is read.
            auto plan = std::make_unique<const nxLogFile::Plan>(nxLogFile::Plan::Read(
                DefaultDirectory, maximumFileSize.IsValid() ? static_cast<unsigned long long>(maximumFileSize) : 0,
                retention));
            nxLogForms::Set(nxLogFormSettings::Read(nxLogForms::Get()));
            const nxMutexGuard guard(_mutex);
            nxLogFile& file = _parts->GetFile(_mutex);
            if (file.IsOpen())
                return;
            _parts->Publish(std::move(plan));
            created = file.Create(*_parts->plan.load());
        });
    WithoutThrowing(
        [&]
        {
            // The file comes first, so that it gets each batch first.
            std::vector<nxLogDevice*> devices{this};
            devices.insert(devices.end(), others.begin(), others.end());
            nxLogManager::GetInstance().RegisterLogDevices(devices);
        });
    return created;
}

void nxFileLogDevice::Write(const nxLog& record)
{
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    WithoutThrowing([&] { file.WriteRecord(record); });
    _parts->CountLost(this);
}

void nxFileLogDevice::WriteLines(const nxLogLineBatch& batch)
{
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    const bool atOnce = batch.worstLevel >= NX_LOG_LEVEL_WARNING;
    WithoutThrowing([&] { file.Write({batch.text, batch.size}, atOnce, batch.seconds); });
    _parts->CountLost(this);
}

void nxFileLogDevice::Maintain()
{
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    WithoutThrowing([&] { file.Maintain(nxClock::MonotonicNanoseconds()); });
    _parts->CountLost(this);
}

void nxFileLogDevice::Flush()
{
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    WithoutThrowing([&] { file.Flush(); });
}

void nxFileLogDevice::Destroy()
{
    nxLogWriter::GetInstance().WriteOutAtEnd();
    // Without the mutex, because the deferred-write thread may be waiting for it inside this device.
    nxLogManager::GetInstance().UnregisterLogDevice(this);
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    WithoutThrowing([&] { file.End(); });
    file.Destroy();
    _parts->Publish(nullptr);
}

// Tells what did not get into the file.
void nxFileLogDevice::_EndProcess()
{
    nxFileLogDevice& device = GetInstance();
    if (!nxLogTimedLock::Take(device._mutex, nxLogLimits::FileAtEnd))
        return;
    WithoutThrowing([&device] { device._parts->file->End(); });
    static_cast<void>(device._mutex.Unlock());
}

void nxFileLogDevice::CloseAndReopenLogFile()
{
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    WithoutThrowing([&] { file.Reopen(); });
}

void nxFileLogDevice::SetRetention(const nxLogRetention& retention)
{
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    nxLogRetention& kept = _parts->GetRetention(_mutex);
    WithoutThrowing(
        [&]
        {
            kept = retention;
            file.SetRetention(retention);
            if (const nxLogFile::Plan* const plan = _parts->plan.load(); plan != nullptr)
            {
                auto next = std::make_unique<nxLogFile::Plan>(*plan);
                next->retention = retention;
                _parts->Publish(std::move(next));
            }
        });
}

std::string nxFileLogDevice::GenerateLogDirectoryFilenamePrefix() const
{
    const nxLogFile::Plan plan = nxLogFile::Plan::Read(DefaultDirectory);
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    file.RefreshNameParts(plan);
    return file.GetPrefix();
}

std::string nxFileLogDevice::GenerateFileName() const
{
    const nxLogFile::Plan plan = nxLogFile::Plan::Read(DefaultDirectory);
    const nxMutexGuard guard(_mutex);
    nxLogFile& file = _parts->GetFile(_mutex);
    file.RefreshNameParts(plan);
    return file.GetNextFileName();
}

std::string nxFileLogDevice::GetFileName() const
{
    const nxMutexGuard guard(_mutex);
    return _parts->GetFile(_mutex).GetFileName();
}

std::uint64_t nxFileLogDevice::GetLostLines() const
{
    const nxMutexGuard guard(_mutex);
    return _parts->GetFile(_mutex).GetLostLines();
}

nxLogLineStyle nxFileLogDevice::GetLineStyle() const { return nxLogForms::GetFileStyle(); }

void nxFileLogDevice::BeforeFork() { _parts->isLockedForFork = nxLogForkLock::Take(_mutex); }

void nxFileLogDevice::AfterForkInParent()
{
    nxLogForkLock::GiveBack(_mutex, std::exchange(_parts->isLockedForFork, false));
}

void nxFileLogDevice::AfterForkInChild()
{
    const bool isWhole = std::exchange(_parts->isLockedForFork, false);
    nxLogFileFigures::AfterForkInChild();
    nxLogForkLock::RenewInChild(_mutex, isWhole);
    if (isWhole)
        return _parts->file->ForgetInChild();
    // Another thread of the parent was inside the file. Its descriptor stays open in this process.
    WithoutThrowing(
        [&]
        {
            [[gnu::used]] static nxLogFile* torn;  // leak checkers find it here
            auto fresh = std::make_unique<nxLogFile>();
            if (const nxLogFile::Plan* const plan = _parts->plan.load(); plan != nullptr)
                fresh->CreateInChild(*plan);
            torn = _parts->file.release();
            static_cast<void>(torn);
            _parts->file = std::move(fresh);
        });
}
