#ifndef CORE_TESTING_NXCAPTURINGLOGDEVICE_H
#define CORE_TESTING_NXCAPTURINGLOGDEVICE_H

#include <algorithm>
#include <chrono>
#include <concepts>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <utility>
#include <vector>

#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogManager.h"

/// What a log record said, kept by nxCapturingLogDevice.
struct nxCapturedRecord
{
    nxLogLevelEnum level;                          ///< How grave it was.
    std::string text;                              ///< The message.
    std::string sourceFile;                        ///< Where it was reported,
    unsigned line;                                 ///< and in which line.
    unsigned threadIndex;                          ///< The thread that built it.
    nxTimeStamp timeStamp;                         ///< When it was built,
    unsigned threadCPU = 0;                        ///< and on which processor.
    nxValueWrapper<unsigned> destinationUserID{};  ///< Whom it is for; null when nobody in particular.
    std::string sourceApplication{};               ///< The application that it came from, or empty.
};

/// Writes level, text and place, "WRN connected [session.cpp:88]", for the messages of failed expectations.
inline std::ostream& operator<<(std::ostream& stream, const nxCapturedRecord& record)
{
    return stream << record.level << ' ' << record.text << " [" << record.sourceFile << ':' << record.line << ']';
}

/// Says whether a record is one that is looked for. Made by nxCapturingLogDevice's Contains(), HasLevel(), AtLeast()
/// and From(), or from any function of a record, and combined with `&&`, `||` and `!`.
///
/// - Threads: as the function it was made from. Ownership: it owns that function.
class nxLogMatcher
{
public:
    /// A matcher of one's own: @p test takes an nxCapturedRecord and returns whether it matches.
    template <std::predicate<const nxCapturedRecord&> Test>
    nxLogMatcher(Test test) : _test(std::move(test))
    {
    }

    /// @return whether @p record matches.
    bool operator()(const nxCapturedRecord& record) const { return _test(record); }

    /// Matches what both match.
    friend nxLogMatcher operator&&(nxLogMatcher left, nxLogMatcher right)
    {
        return [left = std::move(left), right = std::move(right)](const nxCapturedRecord& record)
        { return left(record) && right(record); };
    }
    /// Matches what at least one of them matches.
    friend nxLogMatcher operator||(nxLogMatcher left, nxLogMatcher right)
    {
        return [left = std::move(left), right = std::move(right)](const nxCapturedRecord& record)
        { return left(record) || right(record); };
    }
    /// Matches what @p matcher does not.
    friend nxLogMatcher operator!(nxLogMatcher matcher)
    {
        return [matcher = std::move(matcher)](const nxCapturedRecord& record) { return !matcher(record); };
    }

private:
    std::function<bool(const nxCapturedRecord&)> _test;
};

/// For the tests of applications: a log device that keeps every record and lets a test wait for one.
///
/// It registers itself when it is constructed and unregisters when it is destroyed. The log is asynchronous: wait for a
/// record with WaitFor() rather than looking at once.
///
/// - Errors: none. - Threads: every operation may come from any thread, also from a matcher: matchers are asked without
///   the device's lock. - Ownership: it owns copies of what it keeps.
/// @code
/// using Log = nxCapturingLogDevice;
/// Log log;
/// Connect();
/// EXPECT_TRUE(log.WaitFor(Log::Contains("connected to") && !Log::AtLeast(NX_LOG_LEVEL_ERROR))) << log;
/// EXPECT_EQ(log.Count(Log::From("core/trunk/nxMutex")), 0u) << log;
/// @endcode
class nxCapturingLogDevice final : public nxLogDevice
{
public:
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
    static nxLogMatcher Contains(std::string part)
    {
        return [part = std::move(part)](const nxCapturedRecord& record)
        { return record.text.find(part) != std::string::npos; };
    }
    /// Matches records of @p level.
    static nxLogMatcher HasLevel(nxEnumValue level)
    {
        return [level](const nxCapturedRecord& record) { return record.level == level; };
    }
    /// Matches records of @p level and graver ones.
    static nxLogMatcher AtLeast(nxEnumValue level)
    {
        return [level](const nxCapturedRecord& record)
        { return record.level.GetValue() >= static_cast<unsigned>(level); };
    }
    /// Matches records that name @p sourceFile as their place, written as in the record: "core/trunk/nxMutex".
    static nxLogMatcher From(std::string sourceFile)
    {
        return [sourceFile = std::move(sourceFile)](const nxCapturedRecord& record)
        { return record.sourceFile == sourceFile; };
    }

    /// Waits until a record that matches has arrived, also one that arrived before the call.
    /// @param matcher says which records count.
    /// @param timeout how long to wait at most; less than nothing does not wait.
    /// @return whether one arrived.
    bool WaitFor(const nxLogMatcher& matcher, std::chrono::milliseconds timeout = std::chrono::seconds(10)) const
    {
        return WaitForCount(matcher, 1, timeout);
    }
    /// The same for @p count records that match.
    bool WaitForCount(const nxLogMatcher& matcher, std::size_t count,
                      std::chrono::milliseconds timeout = std::chrono::seconds(10)) const
    {
        // A deadline that the clock cannot hold would have passed already.
        constexpr std::chrono::milliseconds century = std::chrono::hours(876'000);
        const auto deadline =
            std::chrono::steady_clock::now() + std::clamp(timeout, std::chrono::milliseconds(0), century);
        for (;;)
        {
            const auto [records, changes] = _GetKept();
            if (_CountIn(records, matcher) >= count)
                return true;
            std::unique_lock<std::mutex> lock(_mutex);
            if (!_arrived.wait_until(lock, deadline, [&, seen = changes] { return _changes != seen; }))
                return false;
        }
    }
    /// @return how many records that match have arrived.
    std::size_t Count(const nxLogMatcher& matcher) const { return _CountIn(_GetKept().first, matcher); }
    /// @return a copy of everything kept, in the order of arrival.
    std::vector<nxCapturedRecord> GetRecords() const
    {
        std::vector<nxCapturedRecord> copies;
        for (const Kept& record : _GetKept().first)
            copies.push_back(*record);
        return copies;
    }
    /// Writes everything kept, a line each.
    friend std::ostream& operator<<(std::ostream& stream, const nxCapturingLogDevice& log)
    {
        for (const nxCapturedRecord& record : log.GetRecords())
            stream << record << '\n';
        return stream;
    }
    /// Forgets what was kept.
    void Clear()
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        _records.clear();
        ++_changes;
    }

    /// Keeps @p record; called by the log.
    void Write(const nxLog& record) override
    {
        auto kept = std::make_shared<const nxCapturedRecord>(
            nxCapturedRecord{record.GetLogLevel(), record.GetText(), record.GetSourceFile(), record.GetLineNumber(),
                             record.GetThreadIndex(), record.GetTimeStamp(), record.GetThreadCPU(),
                             record.GetDestinationUserID(), record.GetSourceApplication()});
        {
            const std::lock_guard<std::mutex> lock(_mutex);
            _records.push_back(std::move(kept));
            ++_changes;
        }
        _arrived.notify_all();
    }
    void Flush() override {}    ///< Nothing waits.
    void Destroy() override {}  ///< Nothing to end.

private:
    using Kept = std::shared_ptr<const nxCapturedRecord>;

    // What is kept now, for looking at without the lock, and how often that has changed.
    std::pair<std::vector<Kept>, std::size_t> _GetKept() const
    {
        const std::lock_guard<std::mutex> lock(_mutex);
        return {_records, _changes};
    }
    static std::size_t _CountIn(const std::vector<Kept>& records, const nxLogMatcher& matcher)
    {
        return static_cast<std::size_t>(
            std::count_if(records.begin(), records.end(), [&](const Kept& record) { return matcher(*record); }));
    }

    mutable std::mutex _mutex;
    mutable std::condition_variable _arrived;
    std::vector<Kept> _records;
    std::size_t _changes = 0;
};

#endif
