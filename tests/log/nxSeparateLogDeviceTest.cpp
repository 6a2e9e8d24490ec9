// SPDX-License-Identifier: Apache-2.0
// Devices with a thread of their own: none holds up another, and every record is delivered once or counted as lost.

#include "core/log/nxLogFigures.h"
#include "core/log/nxLogLineSink.h"
#include "core/log/nxSeparateLogDevice.h"
#include "tests/support/nxSystemTest.h"

namespace
{
// Takes records or lines, and keeps their texts.
class Device final : public nxLogDevice, private nxLogLineSink
{
public:
    explicit Device(bool takesLines) : nxLogDevice(takesLines ? static_cast<nxLogLineSink*>(this) : nullptr) {}

    void Write(const nxLog& record) override { _Take(record.GetText() + '\n'); }
    void Flush() override { ++flushes; }
    void Destroy() override { ++destroys; }

    std::vector<std::string> GetLines() const
    {
        std::vector<std::string> lines;
        std::istringstream stream(_text);
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line.substr(line.rfind(']') == std::string::npos ? 0 : line.rfind(']') + 2));
        return lines;
    }

    std::function<void()> onWrite = [] {};
    std::atomic<int> flushes{0}, destroys{0};

private:
    nxLogLineStyle GetLineStyle() const override { return {nxLogLineStyle::LevelAndText, false}; }
    void WriteLines(const nxLogLineBatch& batch) override { _Take({batch.text, batch.size}); }
    void _Take(const std::string& text)
    {
        onWrite();
        _text += text;
    }

    std::string _text;
};

// What "17 records were lost between ..." says.
std::uint64_t CountTold(const std::string& line)
{
    const std::size_t end = line.find(" records were lost between ");
    return end == std::string::npos ? 0 : std::stoull(line);
}

}  // namespace

TEST(nxSeparateLogDevice, ADeviceThatDoesNotReturnHoldsUpNoOtherAndIsToldWhatItHasMissed)
{
    for (const bool takesLines : {false, true})
    {
        SCOPED_TRACE(takesLines);
        nxGate gate;
        const auto inner = std::make_shared<Device>(takesLines);
        inner->onWrite = [&gate] { gate.Pass(); };
        nxFunctionLogDevice other;
        nxSeparateLogDevice separate(inner);
        separate.SetMaximumBytes(takesLines ? 5'000 : 20'000);
        nxLogManager::SetDeviceName(&separate, "slow");
        Manager().RegisterLogDevice(&separate);
        NX_LOG(NX_LOG_LEVEL_INFO) << "first";
        gate.WaitForAThread();
        for (int i = 1; i <= 1'000; ++i)
        {
            NX_LOG(NX_LOG_LEVEL_INFO) << i;
            if (i % 250 == 0)  // the lines come in several batches
            {
                EXPECT_TRUE(nxEventually([&] { return other.writes == i + 1; }));
            }
        }
        if (takesLines)
            WaitUntilWritten();  // comes back though the device does not
        EXPECT_TRUE(nxEventually([&] { return other.writes == 1'001; }));
        // Its turn comes after that of the other.
        EXPECT_TRUE(nxEventually([&] { return separate.GetWaitingRecords() + separate.GetLostRecords() == 1'001; }));
        const std::uint64_t lost = separate.GetLostRecords();
        EXPECT_GT(lost, 0U);
        gate.Open();
        EXPECT_TRUE(separate.WaitUntilWritten(60));
        NX_LOG(NX_LOG_LEVEL_INFO) << "last";
        WaitUntilWritten();
        const std::vector<std::string> lines = inner->GetLines();
        std::uint64_t delivered = 0, told = 0;
        for (const std::string& line : lines)
            CountTold(line) != 0 ? told += CountTold(line) : ++delivered;
        EXPECT_EQ(delivered, 1'001 - lost + 1);
        EXPECT_EQ(told, lost);
        const std::string figure = std::string("nxcore_log_device_lost_lines_total{device=\"slow\"} ")
                                       .append(std::to_string(lost))
                                       .append("\n");
        EXPECT_NE(nxLogFigures::Read().GetAsOpenMetrics().find(figure), std::string::npos) << figure;
        EXPECT_EQ(lines.front(), "first");
        EXPECT_EQ(lines.back(), "last");
        EXPECT_GT(inner->flushes, 0);
        separate.Destroy();
        EXPECT_EQ(inner->destroys, 1);
    }
}

// Its owner leaves it, and the process ends, while the device is stuck for ever.
TEST(nxSeparateLogDevice, ADeviceThatNeverReturnsKeepsNeitherItsOwnerNorTheEndOfTheProcess)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    const auto run = [](bool isLeft)
    {
        nxGate gate;
        const auto inner = std::make_shared<Device>(true);
        inner->onWrite = [&gate]
        {
            gate.Pass();
            pause();
        };
        auto* const separate = new nxSeparateLogDevice(inner);
        Manager().RegisterLogDevice(separate);
        NX_LOG(NX_LOG_LEVEL_FATAL) << "waits for a tenth of a second";
        gate.WaitForAThread();
        gate.Open();
        if (isLeft)
            delete separate;
        std::exit(testing::Test::HasFailure());
    };
    nxChildProcess leaves([&run] { run(true); });
    nxChildProcess stays([&run] { run(false); });
    EXPECT_TRUE(leaves.Succeeds());
    EXPECT_TRUE(stays.Succeeds());
}

TEST(nxSeparateLogDevice, AForkedChildHasNothingOfItsParentAndAThreadOfItsOwn)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    nxGate gate;
    const auto inner = std::make_shared<Device>(false);
    const pid_t parent = getpid();
    inner->onWrite = [&gate, parent]
    {
        if (getpid() == parent)
            gate.Pass();
    };
    nxSeparateLogDevice separate(inner);
    Manager().RegisterLogDevice(&separate);
    for (int i = 0; i < 10; ++i)
        NX_LOG(NX_LOG_LEVEL_INFO) << i;
    gate.WaitForAThread();
    EXPECT_TRUE(nxInChild(
        [&]
        {
            EXPECT_EQ(separate.GetWaitingRecords(), 0U);
            NX_LOG(NX_LOG_LEVEL_INFO) << "child";
            WaitUntilWritten();
            EXPECT_EQ(inner->GetLines(), std::vector<std::string>{"child"});
        }));
    gate.Open();
    EXPECT_TRUE(separate.WaitUntilWritten(60));
    EXPECT_EQ(inner->GetLines().size(), 10U);
}
