#ifndef TESTS_PRICE_RECORDINGLOGDEVICE_H
#define TESTS_PRICE_RECORDINGLOGDEVICE_H

#include <chrono>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogManager.h"

/// Keeps the records of the tick tables while it lives, whenever the log's thread gets to them.
class RecordingLogDevice : public nxLogDevice
{
public:
    struct Record
    {
        nxLogLevelEnum level;
        unsigned line;
        std::string text;
    };

    RecordingLogDevice() { nxLogManager::GetInstance().RegisterLogDevice(this); }
    ~RecordingLogDevice() override { nxLogManager::GetInstance().UnregisterLogDevice(this); }

    void Write(const nxLog& record) override
    {
        const std::lock_guard<std::mutex> guard(_lock);
        if (std::string(record.GetSourceFile()) == "core/trunk/nxVariableTickTable")
            _records.push_back({record.GetLogLevel(), record.GetLineNumber(), std::string(record.GetText())});
    }
    void Flush() override {}
    void Destroy() override {}

    /// Waits for so many records; fewer come back when they do not arrive within the hang limit.
    std::vector<Record> WaitForRecords(std::size_t count)
    {
        for (int tries = 0; tries < 10000; ++tries)
        {
            {
                const std::lock_guard<std::mutex> guard(_lock);
                if (_records.size() >= count)
                    return _records;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        const std::lock_guard<std::mutex> guard(_lock);
        return _records;
    }

private:
    std::mutex _lock;
    std::vector<Record> _records;
};

#endif
