#ifndef TESTS_SUPPORT_NXRECORDEDLOG_H
#define TESTS_SUPPORT_NXRECORDEDLOG_H

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogManager.h"

/// Collects what one source file reports to the log, for as long as the object lives, as "<level> <line> <text>".
class nxRecordedLog : public nxLogDevice
{
public:
    explicit nxRecordedLog(std::string sourceFile) : _sourceFile(std::move(sourceFile))
    {
        nxLogManager::GetInstance().RegisterLogDevice(this);
        // The first device of a process is given what was reported before it.
        nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(20.0));
        _records.clear();
    }
    ~nxRecordedLog() override { nxLogManager::GetInstance().UnregisterLogDevice(this); }

    /// The records so far, after waiting until there are @p count (the log writes later, from a thread of its own).
    std::vector<std::string> WaitFor(std::size_t count)
    {
        std::unique_lock<std::mutex> lock(_mutex);
        _written.wait_for(lock, std::chrono::seconds(20), [&] { return _records.size() >= count; });
        return _records;
    }

    void Write(const nxLog& record) override
    {
        if (record.GetSourceFile() != _sourceFile)
            return;
        const std::lock_guard<std::mutex> lock(_mutex);
        _records.push_back(record.GetLogLevel().GetShortDescription() + ' ' + std::to_string(record.GetLineNumber()) +
                           ' ' + record.GetText());
        _written.notify_all();
    }
    void Flush() override {}
    void Destroy() override {}

private:
    const std::string _sourceFile;
    std::mutex _mutex;
    std::condition_variable _written;
    std::vector<std::string> _records;
};

#endif
