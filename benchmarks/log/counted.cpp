// SPDX-License-Identifier: Apache-2.0
#include "benchmarks/log/counted.h"

#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>

#include "core/log/nxLogDevice.h"
#include "core/log/nxLogManager.h"

namespace
{
// Takes lines and keeps none. It holds the log's thread up from the first line on that it is not to let pass.
class Gate final : public nxLogDevice, private nxLogLineSink
{
public:
    explicit Gate(nxLogLineStyle::Form form) : nxLogDevice(static_cast<nxLogLineSink*>(this)), _style{form, true}
    {
        nxLogManager::GetInstance().RegisterLogDevice(this);
    }
    void Write(const nxLog&) override {}
    void Flush() override {}
    void Destroy() override {}

    // Lets @p count lines pass. Returns when one more has come, which holds the log's thread up.
    void LetPass(int count)
    {
        std::unique_lock lock(_mutex);
        _mayPass = count;
        _changed.notify_all();
        _changed.wait(lock, [this] { return _lines > _mayPass; });
    }

private:
    nxLogLineStyle GetLineStyle() const override { return _style; }
    void WriteLines(const nxLogLineBatch& batch) override
    {
        std::unique_lock lock(_mutex);
        _lines += static_cast<int>(batch.lines);
        _changed.notify_all();
        _changed.wait(lock, [this] { return _lines <= _mayPass; });
    }

    nxLogLineStyle _style;
    std::mutex _mutex;
    std::condition_variable _changed;
    int _mayPass = 0;
    int _lines = 0;
};

// Reports one record, which holds the log's thread up. The gate is never destroyed, because that thread stays inside.
Gate& HoldWriterUp(void (*report)(), nxLogLineStyle::Form form)
{
    Gate& gate = *new Gate(form);
    report();
    gate.LetPass(0);
    return gate;
}

void Report(void (*report)(), int count)
{
    for (int i = 0; i < count; ++i)
        report();
}
}  // namespace

void CountedLog::RunCaller(void (*report)(), int count)
{
    HoldWriterUp(report, nxLogLineStyle::Full);
    Report(report, count);
    std::_Exit(0);
}

void CountedLog::RunWriter(void (*report)(), nxLogLineStyle::Form form, int count)
{
    if (count > LargestCount)
    {
        std::fprintf(stderr, "instructions: %d records at most\n", LargestCount);
        std::_Exit(1);
    }
    Gate& gate = HoldWriterUp(report, form);
    Report(report, count);
    gate.LetPass(count);
    Report(report, LargestCount - count);
    std::_Exit(0);
}
