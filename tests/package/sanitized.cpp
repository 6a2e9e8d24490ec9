// SPDX-License-Identifier: Apache-2.0
// Threads that log past the end of their rings, beside devices that come and go, for sanitized.sh.
#include <thread>

#include "core/nxCore.h"
#include "core/testing/nxCapturingLogDevice.h"

static std::string LogAndReturn(std::size_t i)
{
    NX_LOG(NX_LOG_LEVEL_INFO) << "nested " << i;
    return std::string(i % 97 == 0 ? 100'000 : i % 400, 'x');
}

static void LogMuch()
{
    for (std::size_t i = 0; i < 2000; ++i)
    {
        NX_LOG(i % 500 == 499 ? NX_LOG_LEVEL_WARNING : NX_LOG_LEVEL_INFO) << i << LogAndReturn(i) << nxDecimal(5, 2);
        nxLog record(NX_LOG_LEVEL_INFO, "object", 1, nxTimeStamp());
        nxLogManager::GetInstance().Write(record << i);
    }
}

int main()
{
    for (int round = 0; round < 5; ++round)
    {
        std::thread first(LogMuch), second(LogMuch);
        {
            const nxCapturingLogDevice device;
            first.join();
        }
        second.join();
    }
}
