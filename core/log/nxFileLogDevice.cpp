#include "core/log/nxFileLogDevice.h"

#include <atomic>
#include <string>
#include <utility>

#include "core/log/internal/nxLogFile.h"
#include "core/log/internal/nxLogForkLock.h"
#include "core/log/internal/nxLogWriter.h"
#include "core/log/nxLogManager.h"
#include "core/platform/inline/nxClock.h"
#include "core/platform/nxOneInstance.h"
#include "core/thread/nxMutexGuard.h"

namespace
{
// How long the end of the device waits for queued records, as the end of the process does.
constexpr std::int64_t longestDrain = 10'000'000'000;
constexpr std::int64_t longestStall = 2'000'000'000;

// Devices may not throw; where there is no memory for a line or a file name, that line or file is not written.
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
    // A child that is forked at any moment finds a plan that is whole.
    void Publish(std::unique_ptr<const nxLogFile::Plan> next) { delete plan.exchange(next.release()); }

    std::unique_ptr<nxLogFile> file = std::make_unique<nxLogFile>();
    std::atomic<const nxLogFile::Plan*> plan{nullptr};
    bool isLockedForFork = false;
};

nxFileLogDevice& nxFileLogDevice::GetInstance()
{
    static constinit nxOneInstance<nxFileLogDevice> device;
    return device.Get();
}

nxFileLogDevice::nxFileLogDevice() : nxLogDevice(static_cast<nxLogLineSink*>(this)), _parts(std::make_unique<Parts>())
{
    endOfDevice.store(&nxFileLogDevice::_EndProcess);
}

nxFileLogDevice::~nxFileLogDevice() = default;

bool nxFileLogDevice::Create(const nxValueWrapper<unsigned long long>& maximumFileSize)
{
    return Create(maximumFileSize, nullptr);
}

bool nxFileLogDevice::Create(const nxValueWrapper<unsigned long long>& maximumFileSize, nxLogDevice* other)
{
    bool created = false;
    WithoutThrowing(
        [&]
        {
            // Read before the device's lock is taken, so that it is held for no longer than it must be.
            auto plan = std::make_unique<const nxLogFile::Plan>(nxLogFile::Plan::Read(
                maximumFileSize.IsValid() ? static_cast<unsigned long long>(maximumFileSize) : 0));
            const nxMutexGuard guard(_mutex);
            if (_parts->file->IsOpen())
                return;
            _parts->Publish(std::move(plan));
            created = _parts->file->Create(*_parts->plan.load());
        });
    // The file first, so that it gets each batch first.
    nxLogDevice* const devices[] = {this, other};
    nxLogManager::GetInstance().RegisterLogDevices(devices);
    return created;
}

void nxFileLogDevice::Write(const nxLog& record)
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _parts->file->WriteRecord(record); });
}

void nxFileLogDevice::WriteLines(const nxLogLineBatch& batch)
{
    const nxMutexGuard guard(_mutex);
    const bool atOnce = batch.worstLevel >= NX_LOG_LEVEL_WARNING;
    WithoutThrowing([&] { _parts->file->Write({batch.text, batch.size}, atOnce, batch.seconds); });
}

void nxFileLogDevice::Maintain()
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _parts->file->Maintain(nxClock::MonotonicNanoseconds()); });
}

void nxFileLogDevice::Flush()
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _parts->file->Flush(); });
}

void nxFileLogDevice::Destroy()
{
    nxLogWriter::GetInstance().WriteOut(longestDrain, longestStall);
    // Then, and without the mutex, which the log's thread may be waiting for inside this device.
    nxLogManager::GetInstance().UnregisterLogDevice(this);
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _parts->file->End(); });
    _parts->file->Destroy();
    _parts->Publish(nullptr);
}

// What did not get into the file is told.
void nxFileLogDevice::_EndProcess()
{
    constexpr std::int64_t patience = 100'000'000;
    nxFileLogDevice& device = GetInstance();
    if (!nxLogForkLock::TakeUntil(device._mutex, nxClock::MonotonicNanoseconds() + patience))
        return;
    WithoutThrowing([&device] { device._parts->file->End(); });
    device._mutex.Unlock();
}

void nxFileLogDevice::CloseAndReopenLogFile()
{
    const nxMutexGuard guard(_mutex);
    WithoutThrowing([&] { _parts->file->Reopen(); });
}

std::string nxFileLogDevice::GenerateLogDirectoryFilenamePrefix() const
{
    const nxLogFile::Plan plan = nxLogFile::Plan::Read();
    const nxMutexGuard guard(_mutex);
    _parts->file->Prepare(plan);
    return _parts->file->GetPrefix();
}

std::string nxFileLogDevice::GenerateFileName() const
{
    const nxLogFile::Plan plan = nxLogFile::Plan::Read();
    const nxMutexGuard guard(_mutex);
    _parts->file->Prepare(plan);
    return _parts->file->GetNextFileName();
}

std::string nxFileLogDevice::GetFileName() const
{
    const nxMutexGuard guard(_mutex);
    return _parts->file->GetFileName();
}

std::uint64_t nxFileLogDevice::GetLostLines() const
{
    const nxMutexGuard guard(_mutex);
    return _parts->file->GetLostLines();
}

nxLogLineStyle nxFileLogDevice::GetLineStyle() const { return nxLogFile::Style; }

void nxFileLogDevice::BeforeFork() { _parts->isLockedForFork = nxLogForkLock::Take(_mutex); }

void nxFileLogDevice::AfterForkInParent()
{
    nxLogForkLock::GiveBack(_mutex, std::exchange(_parts->isLockedForFork, false));
}

void nxFileLogDevice::AfterForkInChild()
{
    const bool isWhole = std::exchange(_parts->isLockedForFork, false);
    nxLogForkLock::RenewInChild(_mutex, isWhole);
    if (isWhole)
        return _parts->file->ForgetInChild();
    // Another thread was at it in the parent. Its descriptor stays open in this process.
    WithoutThrowing(
        [&]
        {
            [[gnu::used]] static nxLogFile* torn;  // for leak checkers to find
            auto fresh = std::make_unique<nxLogFile>();
            if (const nxLogFile::Plan* const plan = _parts->plan.load(); plan != nullptr)
                fresh->CreateInChild(*plan);
            torn = _parts->file.release();
            static_cast<void>(torn);
            _parts->file = std::move(fresh);
        });
}
