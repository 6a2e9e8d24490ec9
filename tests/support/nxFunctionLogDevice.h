// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXFUNCTIONLOGDEVICE_H
#define TESTS_SUPPORT_NXFUNCTIONLOGDEVICE_H

#include <atomic>
#include <functional>
#include <utility>

#include "core/log/nxLog.h"
#include "core/log/nxLogDevice.h"
#include "core/log/nxLogManager.h"

/// Calls a function for every record, and counts everything. Registered while it lives.
class nxFunctionLogDevice : public nxLogDevice
{
public:
    explicit nxFunctionLogDevice(std::function<void(const nxLog&)> onWrite = [](const nxLog&) {})
        : _onWrite(std::move(onWrite))
    {
        nxLogManager::GetInstance().RegisterLogDevice(this);
    }
    ~nxFunctionLogDevice() override { nxLogManager::GetInstance().UnregisterLogDevice(this); }

    void Write(const nxLog& record) override
    {
        ++writes;
        _onWrite(record);
    }
    void Flush() override { ++flushes; }
    void Destroy() override { ++destroys; }

    std::atomic<int> writes{0};
    std::atomic<int> flushes{0};
    std::atomic<int> destroys{0};

private:
    const std::function<void(const nxLog&)> _onWrite;
};

#endif
