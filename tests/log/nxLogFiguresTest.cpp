// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogFigures.h"

#include "core/log/nxConsoleLogDevice.h"
#include "tests/support/nxSystemTest.h"

namespace
{
using Figure = nxLogFigures::Figure;
using Of = nxLogFigures::DeviceFigure;

std::uint64_t Get(Figure figure) { return nxLogFigures::Read().Get(figure); }
}  // namespace

TEST(nxLogFigures, CountByDeviceAndReason)
{
    if (!nxInNewProcess())
        return;
    nxGate gate;
    nxFunctionLogDevice slow([&gate](const nxLog&) { gate.Pass(); });
    nxFunctionLogDevice faulty([](const nxLog&) { throw 1; }), alike;
    nxConsoleLogDevice console;
    int pipe[2];
    ASSERT_EQ(::pipe(pipe), 0);
    close(pipe[0]);  // a console without a reader
    const nxRedirected output(STDOUT_FILENO, pipe[1]);
    Manager().RegisterLogDevice(&console);
    nxLogManager::SetDeviceName(&faulty, "a \"b\"\\\n\xFF");
    nxLogManager::SetDeviceName(&alike, "console");
    NX_LOG(NX_LOG_LEVEL_INFO) << "one";
    gate.WaitForAThread();
    EXPECT_GT(Get(Figure::OldestWaitingNanoseconds), 0U);
    gate.Open();
    NX_LOG(NX_LOG_LEVEL_INFO) << "two";
    WaitUntilWritten();

    const nxLogFigures figures = nxLogFigures::Read();
    EXPECT_EQ(figures.Get(Figure::RecordsWritten), 2U);
    EXPECT_EQ(figures.Get(Figure::OldestWaitingNanoseconds), 0U);
    EXPECT_GT(figures.Get(Figure::LastRoundNanoseconds), 0U);
    EXPECT_GT(figures.Get(Figure::QueueBytes), 0U);
    EXPECT_EQ(figures.Get(Figure::QueueLimitBytes), Manager().GetMaximumQueueBytes());
    ASSERT_EQ(figures.GetDevices(), 4U);
    const auto device = [&figures](std::size_t index)
    {
        std::ostringstream text;
        text << figures.GetDeviceName(index);
        for (const Of figure : {Of::Records, Of::Missed, Of::Lost, Of::Errors})
            text << ' ' << figures.GetOfDevice(index, figure);
        return text.str();
    };
    EXPECT_EQ(device(0), "device1 2 0 0 0");
    EXPECT_EQ(device(1), "a \"b\"\\\n\xFF 2 0 0 2");
    EXPECT_EQ(device(2), "console#2 2 0 0 0");
    EXPECT_EQ(device(3), "console 2 0 2 0");
    EXPECT_GT(figures.GetOfDevice(3, Of::Bytes), 0U);
    EXPECT_EQ(figures.GetOfDevice(4, Of::Records), 0U);
    if (const char* const path = std::getenv("NX_TEST_OPENMETRICS"); path != nullptr)  // for openmetrics.py
        std::ofstream(path) << figures.GetAsOpenMetrics();
    EXPECT_TRUE(nxInChild([] { EXPECT_EQ(Get(Figure::RecordsWritten), 0U); }));
    Manager().UnregisterAllLogDevices();
}
