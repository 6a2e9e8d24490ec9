// SPDX-License-Identifier: Apache-2.0
// Writes the logs that the test reads with other programs: logWriter APPLICATION. Each line of standard input names a step,
// and each is answered by a line.

#include <chrono>
#include <iostream>
#include <map>
#include <string>
#include <thread>

#include "core/app/nxApplicationData.h"
#include "core/enum/nxErrorEnum.h"
#include "core/log/nxField.h"
#include "core/log/nxFileLogDevice.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/log/nxLogSetUp.h"
#include "core/numeric/nxDecimal.h"

namespace
{
constexpr unsigned lostRecords = 3;

// Does not move until the log has lost some records.
class StalledDevice : public nxLogDevice
{
    void Write(const nxLog&) override
    {
        while (nxLogManager::GetInstance().GetStatistics().dropped < lostRecords)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    void Flush() override {}
    void Destroy() override {}
};

void Receive(unsigned order, const char* account)
{
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "Gateway.cpp", 12)
        << "order received" << nxField("order", order) << nxField("account", account);
}

void Fill(unsigned order, const char* price, unsigned micros)
{
    NX_LOG_AT(NX_LOG_LEVEL_INFO, "Gateway.cpp", 30)
        << "order filled" << nxField("order", order) << nxField("price", nxDecimal(price, '.'))
        << nxField("micros", micros);
}

void Lose()
{
    StalledDevice device;
    nxLogManager& manager = nxLogManager::GetInstance();
    manager.SetMaximumQueueBytes(1 << 20);
    manager.RegisterLogDevice(&device);
    while (manager.GetStatistics().dropped < lostRecords)
        NX_LOG_AT(NX_LOG_LEVEL_INFO, "Pricing.cpp", 70) << "book" << nxField("levels", std::string(20'000, '.'));
    manager.UnregisterLogDevice(&device);
}

const std::map<std::string, void (*)()> steps = {
    {"open", [] { NX_LOG_AT(NX_LOG_LEVEL_INFO, "Session.cpp", 41) << "session is open"; }},
    {"receive",
     []
     {
         Receive(4711, "desk 4");
         Receive(4712, "desk 9");
     }},
    {"fill",
     []
     {
         Fill(4711, "101.25", 180);
         NX_LOG_AT(NX_LOG_LEVEL_ERROR, "Gateway.cpp", 44)
             << "order rejected" << nxField("order", 4712) << nxField("error", nxErrorEnum(NX_ERR_NOT_FOUND));
         Fill(4713, "101.30", 2450);
     }},
    {"gap", [] { NX_LOG_AT(NX_LOG_LEVEL_WARNING, "Pricing.cpp", 88) << "gap" << nxField("missing", 3); }},
    {"publish", [] { NX_LOG_AT(NX_LOG_LEVEL_PUBLIC_1, "Pricing.cpp", 95) << "trading has begun"; }},
    {"lose", Lose},
    {"rotate", [] { nxFileLogDevice::GetInstance().CloseAndReopenLogFile(); }},
};
}  // namespace

int main(int, char** arguments)
{
    nxApplicationData::SetApplicationName(arguments[1]);
    if (!nxLogSetUp())
        return 1;
    for (std::string step; std::getline(std::cin, step);)
    {
        // Time stamps of two steps differ, also for readers that see milliseconds.
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        std::thread(steps.at(step)).join();
        nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(1);
        std::cout << step << std::endl;
    }
}
