#ifndef CORE_TESTING_NXCAPTURINGLOGDEVICE_H
#define CORE_TESTING_NXCAPTURINGLOGDEVICE_H

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogManager.h"

/// What a log record said, kept by nxCapturingLogDevice.
struct nxCapturedRecord
{
    nxLogLevelEnum level;    ///< How grave it was.
    std::string text;        ///< The message.
    std::string sourceFile;  ///< Where it was reported,
    unsigned line;           ///< and in which line.
    unsigned threadIndex;    ///< The thread that built it.
    nxTimeStamp timeStamp;   ///< When it was built.
};

/// For the tests of applications: a log device that keeps every record and lets a test wait for one.
///
/// It registers itself when it is constructed and unregisters when it is destroyed. The log is asynchronous: wait for a
/// record with WaitFor() rather than looking at once.
///
/// - Errors: none. - Threads: every operation may come from any thread. - Ownership: it owns copies of what it keeps.
/// @code
/// nxCapturingLogDevice log;
/// Connect();
/// EXPECT_TRUE(log.WaitFor(nxCapturingLogDevice::Contains("connected to")));
/// EXPECT_EQ(log.Count(nxCapturingLogDevice::AtLeast(NX_LOG_LEVEL_WARNING)), 0u);
/// @endcode
class nxCapturingLogDevice final : public nxLogDevice
{
public:
    /// Says whether a record is one that is looked for.
    using Matcher = std::function<bool(const nxCapturedRecord&)>;

    /// Registers the device with the process's log. What was reported before is not kept.
    nxCapturingLogDevice()
    {
        nxLogManager& manager = nxLogManager::GetInstance();
        manager.RegisterLogDevice(this);
        manager.WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(10.0));
        Clear();
    }
    ~nxCapturingLogDevice() override { nxLogManager::GetInstance().UnregisterLogDevice(this); }

    /// Matches records whose message contains @p part.
    static Matcher Contains(std::string part)
    {
        return [part = std::move(part)](const nxCapturedRecord& record)
        { return record.text.find(part) != std::string::npos; };
    }
    /// Matches records of @p level.
    static Matcher HasLevel(nxEnumValue level)
    {
        return [level](const nxCapturedRecord& record) { return record.level == level; };
    }
    /// Matches records of @p level and graver ones.
    static Matcher AtLeast(nxEnumValue level)
    {
        return [level](const nxCapturedRecord& record)
        { return record.level.GetValue() >= static_cast<unsigned>(level); };
    }
    /// Matches what both match.
    static Matcher Both(Matcher first, Matcher second)
    {
        return [first = std::move(first), second = std::move(second)](const nxCapturedRecord& record)
        { return first(record) && second(record); };
    }

    /// Waits until a record that matches has arrived, also one that arrived before the call.
    /// @param matcher says which records count.
    /// @param timeout how long to wait at most.
    /// @return whether one arrived.
    bool WaitFor(const Matcher& matcher, std::chrono::milliseconds timeout = std::chrono::seconds(10)) const
    {
        std::unique_lock<std::mutex> lock(_mutex);
        return _arrived.wait_for(lock, timeout, [&] { return std::any_of(_records.begin(), _records.end(), matcher); });
    }
    /// @return how many records that match have arrived.
    std::size_t Count(const Matcher& matcher) const
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return static_cast<std::size_t>(std::count_if(_records.begin(), _records.end(), matcher));
    }
    /// @return a copy of everything kept, in the order of arrival.
    std::vector<nxCapturedRecord> GetRecords() const
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return _records;
    }
    /// Forgets what was kept.
    void Clear()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _records.clear();
    }

    /// Keeps @p record; called by the log.
    void Write(const nxLog& record) override
    {
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _records.push_back({record.GetLogLevel(), record.GetText(), record.GetSourceFile(), record.GetLineNumber(),
                                record.GetThreadIndex(), record.GetTimeStamp()});
        }
        _arrived.notify_all();
    }
    void Flush() override {}    ///< Nothing waits.
    void Destroy() override {}  ///< Nothing to end.

private:
    mutable std::mutex _mutex;
    mutable std::condition_variable _arrived;
    std::vector<nxCapturedRecord> _records;
};

#endif
