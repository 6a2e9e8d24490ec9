// SPDX-License-Identifier: Apache-2.0
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

/// The contents of a log record, kept by nxCapturingLogDevice.
struct nxCapturedRecord
{
    nxLogLevelEnum level;                          ///< Its severity.
    std::string text;                              ///< The message.
    std::string sourceFile;                        ///< The source file of the statement,
    unsigned line;                                 ///< and its line.
    unsigned threadIndex;                          ///< The thread that built it.
    nxTimeStamp timeStamp;                         ///< When it was built,
    unsigned threadCPU = 0;                        ///< and on which processor.
    nxValueWrapper<unsigned> destinationUserID{};  ///< The user it is for, or null.
    std::string sourceApplication{};               ///< The application that it came from, or empty.
};

/// Writes level, text and place, "WRN connected [session.cpp:88]", for the messages of failed expectations.
inline std::ostream& operator<<(std::ostream& stream, const nxCapturedRecord& record)
{
    return stream << record.level << ' ' << record.text << " [" << record.sourceFile << ':' << record.line << ']';
}

/// Decides whether a record is one of those that a test looks for. Made by nxCapturingLogDevice's Contains(), HasLevel(), AtLeast()
/// and From(), or from any function of a record, and combined with `&&`, `||` and `!`.
///
/// - Threads: as the function it was made from. Ownership: it owns that function.
class nxLogMatcher
{
public:
    /// A custom matcher: @p test takes an nxCapturedRecord and returns whether it matches.
    template <std::predicate<const nxCapturedRecord&> Test>
    nxLogMatcher(Test test) : _test(std::move(test))
    {
    }

    /// @return whether @p record matches.
    bool operator()(const nxCapturedRecord& record) const { return _test(record); }

    /// Matches records that both match.
    friend nxLogMatcher operator&&(nxLogMatcher left, nxLogMatcher right)
    {
        return [left = std::move(left), right = std::move(right)](const nxCapturedRecord& record)
        { return left(record) && right(record); };
    }
    /// Matches records that at least one of them matches.
    friend nxLogMatcher operator||(nxLogMatcher left, nxLogMatcher right)
    {
        return [left = std::move(left), right = std::move(right)](const nxCapturedRecord& record)
        { return left(record) || right(record); };
    }
    /// Matches records that @p matcher does not match.
    friend nxLogMatcher operator!(nxLogMatcher matcher)
    {
        return [matcher = std::move(matcher)](const nxCapturedRecord& record) { return !matcher(record); };
    }

private:
    std::function<bool(const nxCapturedRecord&)> _test;
};

/// A log device that keeps every record and lets a test wait for one, for the tests of applications.
///
/// It registers itself when it is constructed and unregisters when it is destroyed. The log is asynchronous, so wait for
/// a record with WaitFor().
///
/// - Errors: none.
/// - Threads: any thread may call any operation, also from a matcher, because matchers run without the device's lock.
/// - Ownership: it owns copies of the records.
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
    /// Registers the device with the process's log. Earlier records are not kept.
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
    /// Matches records from @p sourceFile, spelled as in the record: "core/trunk/nxMutex".
    static nxLogMatcher From(std::string sourceFile)
    {
        return [sourceFile = std::move(sourceFile)](const nxCapturedRecord& record)
        { return record.sourceFile == sourceFile; };
    }

    /// Waits until a matching record has arrived; one that arrived before the call counts too.
    /// @param matcher decides which records count.
    /// @param timeout the longest time to wait; a negative one does not wait.
    /// @return whether one arrived.
    bool WaitFor(const nxLogMatcher& matcher, std::chrono::milliseconds timeout = std::chrono::seconds(10)) const
    {
        return WaitForCount(matcher, 1, timeout);
    }
    /// The same for @p count matching records.
    bool WaitForCount(const nxLogMatcher& matcher, std::size_t count,
                      std::chrono::milliseconds timeout = std::chrono::seconds(10)) const
    {
        // Limited, because a deadline beyond the clock's range would overflow and lie in the past.
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
    /// @return the number of matching records that have arrived.
    std::size_t Count(const nxLogMatcher& matcher) const { return _CountIn(_GetKept().first, matcher); }
    /// @return a copy of everything kept, in the order of arrival.
    std::vector<nxCapturedRecord> GetRecords() const
    {
        std::vector<nxCapturedRecord> copies;
        for (const Kept& record : _GetKept().first)
            copies.push_back(*record);
        return copies;
    }
    /// Writes all kept records, one line each.
    friend std::ostream& operator<<(std::ostream& stream, const nxCapturingLogDevice& log)
    {
        for (const nxCapturedRecord& record : log.GetRecords())
            stream << record << '\n';
        return stream;
    }
    /// Removes all kept records.
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
    void Flush() override {}    ///< Does nothing: no record waits.
    void Destroy() override {}  ///< Does nothing.

private:
    using Kept = std::shared_ptr<const nxCapturedRecord>;

    // The records kept now, to be used without the lock, and the number of changes so far.
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
