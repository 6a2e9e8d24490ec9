// SPDX-License-Identifier: Apache-2.0
#ifndef BENCHMARKS_SUPPORT_LOGOURS_H
#define BENCHMARKS_SUPPORT_LOGOURS_H

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <memory>
#include <string>

#include "benchmarks/support/logTarget.h"
#include "core/app/nxCmdLineArgs.h"
#include "core/app/nxConfigurationKeys.h"
#include "core/log/nxField.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogFormSettings.h"
#include "core/log/nxLogLine.h"
#include "core/log/nxLogLineSink.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"

// Our log as the benchmarks call it. Loggers take records from any thread; Finish() returns when every line is with the system.
namespace LogBenchmark
{
// Finished lines straight into a descriptor.
class DescriptorDevice final : public nxLogDevice, private nxLogLineSink
{
public:
    explicit DescriptorDevice(const std::string& path)
        : nxLogDevice(static_cast<nxLogLineSink*>(this)), _descriptor(open(path.c_str(), O_WRONLY | O_CLOEXEC))
    {
    }
    ~DescriptorDevice() override { close(_descriptor); }
    void Write(const nxLog& record) override
    {
        std::string line;
        nxLogLine::Append(line, record, GetLineStyle());
        WriteAll(line.data(), line.size());
    }
    void Flush() override {}
    void Destroy() override {}

private:
    nxLogLineStyle GetLineStyle() const override { return {nxLogLineStyle::Full, true}; }
    void WriteLines(const nxLogLineBatch& batch) override { WriteAll(batch.text, batch.size); }
    void WriteAll(const char* text, std::size_t size) const
    {
        while (size != 0)
        {
            const ssize_t written = write(_descriptor, text, size);
            if (written <= 0)
                std::abort();
            text += written;
            size -= static_cast<std::size_t>(written);
        }
    }

    int _descriptor;
};

class Ours
{
public:
    explicit Ours(const Target& target) : _before(nxLogManager::GetInstance().GetStatistics())
    {
        if (target.GetDestination() == Destination::File)
        {
            nxCmdLineArgs::GetInstance().SetEnvValue(QRX_LOG_DIRECTORY, target.GetFolder());
            nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>());
            _path = nxFileLogDevice::GetInstance().GetFileName();
            return;
        }
        _device = std::make_unique<DescriptorDevice>(target.GetPath());
        nxLogManager::GetInstance().RegisterLogDevice(_device.get());
    }
    Ours(const Ours&) = delete;
    Ours& operator=(const Ours&) = delete;
    ~Ours()
    {
        if (_device != nullptr)
            nxLogManager::GetInstance().UnregisterLogDevice(_device.get());
        else
            nxFileLogDevice::GetInstance().Destroy();
    }

    static void Log(const Sample& sample)
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << "filled " << sample.quantity << sample.price << sample.symbol;
    }
    void Finish() { nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(100.0)); }
    const std::string& GetPath() const { return _path; }
    double GetDropped() const
    {
        return static_cast<double>(nxLogManager::GetInstance().GetStatistics().dropped - _before.dropped);
    }
    double GetWaits() const
    {
        return static_cast<double>(nxLogManager::GetInstance().GetStatistics().waits - _before.waits);
    }

private:
    nxLogStatistics _before;
    std::unique_ptr<DescriptorDevice> _device;
    std::string _path;
};

// A record with three fields, as text and as JSON, in the file.
template <nxLogFormSettings::Form form>
class OursWithFields : public Ours
{
public:
    explicit OursWithFields(const Target& target) : Ours(target)
    {
        nxLogFormSettings settings;
        settings.file = form;
        nxLogManager::GetInstance().Apply(settings);
    }
    ~OursWithFields() { nxLogManager::GetInstance().Apply(nxLogFormSettings()); }

    static void Log(const Sample& sample)
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << "filled" << nxField("quantity", sample.quantity) << nxField("price", sample.price)
                                  << nxField("symbol", sample.symbol);
    }
};
}  // namespace LogBenchmark

#endif
