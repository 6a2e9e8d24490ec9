// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogManager.h"

#include <linux/membarrier.h>
#include <sys/mman.h>
#include <sys/syscall.h>

#include <barrier>
#include <cmath>

#include "core/log/nxLogLine.h"
#include "core/log/nxLogLineSink.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
nxLog MakeRecord(const std::string& text, const nxLogLevelEnum& level = NX_LOG_LEVEL_INFO)
{
    nxLog record(level, "core/trunk/nxLogManagerTest", 1, nxTimeStamp::Now());
    record << text;
    return record;
}

using Device = nxFunctionLogDevice;
using Gate = nxGate;

// Of the queue's bounds.
constexpr std::uint64_t leastRoom = 1 << 20;

/// Takes lines and takes them apart again.
class LineDevice final : public nxLogDevice, public nxLogLineSink
{
public:
    explicit LineDevice(nxLogLineStyle lineStyle) : nxLogDevice(this), style(lineStyle)
    {
        Manager().RegisterLogDevice(this);
    }
    ~LineDevice() override { Manager().UnregisterLogDevice(this); }

    void Write(const nxLog&) override {}
    void Flush() override {}
    void Destroy() override {}

    nxLogLineStyle GetLineStyle() const override
    {
        ++looks;
        return style;
    }
    void WriteLines(const nxLogLineBatch& batch) override
    {
        std::this_thread::sleep_for(delay);
        const std::string_view lines(batch.text, batch.size);
        EXPECT_EQ(static_cast<unsigned>(std::count(lines.begin(), lines.end(), '\n')), batch.lines);
        EXPECT_EQ(lines.back(), '\n');
        text += lines;
        worstLevel = std::max(worstLevel, batch.worstLevel);
        batches.push_back(batch.seconds);
        largest = std::max(largest, batch.size);
    }

    nxLogLineStyle style;
    std::chrono::milliseconds delay{0};
    std::string text;
    nxEnumValue worstLevel = NX_ENUM_UNDEFINED;
    std::vector<long long> batches;
    std::size_t largest = 0;
    mutable std::atomic<unsigned> looks{0};  // of the log's thread at the queue
};

// A statement of version 1.0 begins a thread's first record by this function, and calls nobody when it has ended.
struct FirstVersion : nxLogChannel
{
    using nxLogChannel::_OpenFirst;
};
}  // namespace

TEST(nxLogManager, LosesNothingAndKeepsTheOrderOfEachThreadHoweverSlowTheDevice)
{
    if (!nxInNewProcess())  // the log tells of waits and losses later, when another test may count records
        return;
    constexpr int threads = 4;
    constexpr int records = 20'000;
    for (const bool isSlow : {false, true})
    {
        SCOPED_TRACE(isSlow);
        if (isSlow)
            Manager().SetMaximumQueueBytes(leastRoom);
        const nxLogStatistics before = Manager().GetStatistics();
        std::map<std::string, int> next;
        int faults = 0;
        std::atomic<std::uint64_t> told{0};  // how many callers waited, up to a second later
        Device device(
            [&](const nxLog& record)
            {
                const std::string text = record.GetText();
                const std::size_t blank = text.find(' ');
                if (text.starts_with("t:"))
                    faults += next[text.substr(0, blank)]++ != std::stoi(text.substr(blank));
                if (text.starts_with("Callers that waited"))
                    told += std::stoull(text.substr(text.rfind(' ') + 1));
                if (isSlow && Manager().GetStatistics().waits == before.waits)
                    std::this_thread::sleep_for(std::chrono::milliseconds(1));
            });
        nxInThreads(threads,
                    [](int index)
                    {
                        for (int number = 0; number < records; ++number)
                            if (number % 100 != 99)
                                NX_LOG(NX_LOG_LEVEL_INFO) << "t:" << index << " " << number;
                            else
                            {
                                nxLog record = MakeRecord("t:");
                                record << index << " " << number;
                                Manager().Write(record);
                            }
                    });
        WaitUntilWritten();
        EXPECT_EQ(faults, 0);
        EXPECT_EQ(next.size(), static_cast<std::size_t>(threads));
        for (const auto& [thread, count] : next)
            EXPECT_EQ(count, records) << thread;
        EXPECT_EQ(Manager().GetStatistics().dropped, before.dropped);
        const std::uint64_t waits = Manager().GetStatistics().waits - before.waits;
        EXPECT_TRUE(!isSlow || waits > 0) << "callers wait for a slow device";
        EXPECT_TRUE(nxEventually([&] { return told >= waits; }));
    }
}

TEST(nxLogManager, PutsWhatHappenedLaterOnAnotherThreadLater)
{
    constexpr int rounds = 3'000;
    std::vector<int> seen;
    Device device([&](const nxLog& record) { seen.push_back(std::stoi(record.GetText())); });
    std::atomic<int> turn{0};
    const auto play = [&turn](int parity)  // of two threads in turn
    {
        for (int number = parity; number < rounds; number += 2)
        {
            while (turn.load(std::memory_order_acquire) != number)
                std::this_thread::yield();
            // Processors may read their counters some instructions early.
            const auto later = std::chrono::steady_clock::now() + std::chrono::microseconds(10);
            while (std::chrono::steady_clock::now() < later)
                continue;
            NX_LOG(NX_LOG_LEVEL_INFO) << number;
            turn.store(number + 1, std::memory_order_release);
        }
    };
    nxInThreads(2, play);
    WaitUntilWritten();
    ASSERT_EQ(seen.size(), static_cast<std::size_t>(rounds));
    const auto fault = std::is_sorted_until(seen.begin(), seen.end());
    EXPECT_EQ(fault - seen.begin(), rounds) << *fault << " comes after " << *(fault - 1);
}

TEST(nxLogManager, CarriesRecordsOfEverySizeOnce)
{
    if (!nxInNewProcess())  // the log tells of waits and losses later, when another test may count records
        return;
    // Around a quarter of a ring, beyond a whole one, and at the length at which messages are cut; in between small
    // ones, so that the large ones begin everywhere in the ring.
    std::vector<std::size_t> sizes;
    for (const std::size_t size :
         {0u, 1u, 200u, 225u, 255u, 256u, 1000u, 16'300u, 65'400u, 65'536u, 65'600u, 262'144u, 600'000u, 1'048'576u})
        for (int offset = 0; offset < 3; ++offset)
            sizes.insert(sizes.end(), {size, std::size_t{7}, size / 2});
    std::vector<std::size_t> seen;
    int faults = 0;
    Device device(
        [&](const nxLog& record)
        {
            if (record.GetSourceFile() == std::string("core/trunk/nxLogManager"))
                return;  // the log tells of the waits
            const std::string text = record.GetText();
            seen.push_back(text.size());
            faults += text.find_first_not_of(text.empty() ? 'a' : text[0]) != std::string::npos;
        });
    std::vector<std::size_t> expected;
    for (std::size_t index = 0; index < sizes.size(); ++index)
    {
        const std::string text(sizes[index], static_cast<char>('a' + index % 26));
        if (index % 2 == 0)
            NX_LOG(NX_LOG_LEVEL_INFO) << text;
        else
            NX_LOG(NX_LOG_LEVEL_INFO) << std::string_view(text).substr(0, text.size() / 3)
                                      << std::string_view(text).substr(text.size() / 3);
        nxLog record = MakeRecord(text);
        Manager().Write(record);
        expected.insert(expected.end(), {text.size(), text.size()});
    }
    WaitUntilWritten();
    EXPECT_EQ(seen, expected);
    EXPECT_EQ(faults, 0);
    seen.clear();
    NX_LOG(NX_LOG_LEVEL_INFO) << std::string(1'048'577, 'x');
    nxLog record = MakeRecord("once");
    Manager().Write(record);
    EXPECT_EQ(record.GetText(), "") << "its message is given away";
    Manager().Write(record);
    WaitUntilWritten();
    EXPECT_EQ(seen, (std::vector<std::size_t>{1'048'576 + std::string("... [cut]").size(), 4, 0}));
}

// What one thread writes without end, and what threads that come and go take, is bounded, and what is lost is counted.
TEST(nxLogManager, DropsAndCountsOnceADeviceHasStalled)
{
    if (!nxInNewProcess())  // the log tells of waits and losses later, when another test may count records
        return;
    Manager().SetMaximumQueueBytes(leastRoom);
    for (const bool isOneThread : {true, false})
    {
        SCOPED_TRACE(isOneThread);
        const int records = isOneThread ? 40'000 : 8'000;
        const std::uint64_t droppedBefore = Manager().GetStatistics().dropped;
        Gate gate;
        int heard = 0;
        std::vector<std::string> told;
        Device device(
            [&](const nxLog& record)
            {
                gate.Pass();
                const std::string text = record.GetText();
                heard += text.starts_with("flood ");
                if (text.starts_with("Log records dropped"))
                    told.push_back(text);
            });
        NX_LOG(NX_LOG_LEVEL_WARNING) << "first";
        gate.WaitForAThread();
        for (int number = 0; number < records; ++number)
        {
            const auto log = [&]
            { NX_LOG(NX_LOG_LEVEL_INFO) << "flood " << number << " of text that takes some room"; };
            isOneThread ? log() : std::thread(log).join();
        }
        const nxLogStatistics statistics = Manager().GetStatistics();
        const std::uint64_t dropped = statistics.dropped - droppedBefore;
        EXPECT_GT(dropped, 0u);
        EXPECT_LE(statistics.bytes, std::uint64_t{isOneThread ? 2u : 64u} << 20);
        EXPECT_FALSE(Manager().GetLogEntriesQueue().empty());

        gate.Open();
        EXPECT_TRUE(nxEventually(
            [&]
            {
                WaitUntilWritten();
                return !told.empty();
            }));
        WaitUntilWritten();  // for what the log tells with it
        EXPECT_EQ(heard + static_cast<int>(dropped), records);
        EXPECT_EQ(told.size(), 1u);
        EXPECT_NE(told.front().find(": " + std::to_string(dropped) + ","), std::string::npos) << told.front();
        EXPECT_EQ(Manager().GetStatistics().dropped - droppedBefore, dropped);
    }
}

// A record too large for a ring needs room of its own, whatever idle rings hold all that the bound allows.
TEST(nxLogManager, LargeRecordsDoNotWaitForRingsThatAreHeldButEmpty)
{
    if (!nxInNewProcess())  // the log tells of waits and losses later, when another test may count records
        return;
    const std::uint64_t bound = Manager().GetMaximumQueueBytes();
    Device device;
    // A thread that gives signs of life all the time.
    const nxBusyThread ticking(
        []
        {
            NX_LOG(NX_LOG_LEVEL_INFO) << "tick";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        });
    nxInThreads(1,
                [&]
                {
                    const auto logLarge = [&](int writes)
                    {
                        const std::uint64_t dropped = Manager().GetStatistics().dropped;
                        for (const std::size_t size : {5'000u, 100'000u, 1'048'576u})
                            NX_LOG(NX_LOG_LEVEL_INFO) << std::string(size, 'x');
                        nxInThreads(4, [](int) { NX_LOG(NX_LOG_LEVEL_INFO) << std::string(300'000, 'y'); });
                        WaitUntilWritten();
                        EXPECT_EQ(Manager().GetStatistics().dropped, dropped);
                        EXPECT_GE(device.writes, writes);
                    };
                    Manager().SetRecommendedBufferCapacity(100'000'000);
                    EXPECT_GE(Manager().GetStatistics().bytes, bound - bound / 8);
                    logLarge(7);
                    Manager().SetRecommendedBufferCapacity(0);
                    Manager().SetMaximumQueueBytes(leastRoom);
                    // More rings than the bound has room for, all of them empty and held.
                    std::barrier together(12);
                    nxInThreads(12,
                                [&](int)
                                {
                                    NX_LOG(NX_LOG_LEVEL_INFO) << "here";
                                    together.arrive_and_wait();
                                    NX_LOG(NX_LOG_LEVEL_INFO) << std::string(100'000, 'z');
                                    together.arrive_and_wait();
                                });
                    logLarge(2 * 7 + 24);
                });
}

TEST(nxLogManager, CountsARecordForWhichThereIsNeitherRoomNorMemory)
{
    if (nxUnderThreadSanitizer || nxUnderAddressSanitizer)
        GTEST_SKIP() << "sanitizers need more memory";
    if (!nxInNewProcess())
        return;
    Manager().SetMaximumQueueBytes(leastRoom);
    Gate gate;
    Device stuck([&gate](const nxLog&) { gate.Pass(); });
    while (Manager().GetStatistics().dropped == 0)
        NX_LOG(NX_LOG_LEVEL_INFO) << std::string(1'000, 'f');
    const rlimit none{0, RLIM_INFINITY}, unlimited{RLIM_INFINITY, RLIM_INFINITY};
    ASSERT_EQ(setrlimit(RLIMIT_AS, &none), 0);
    void* taken = nullptr;
    for (const std::size_t size : {std::size_t{1} << 16, std::size_t{1} << 12, std::size_t{1} << 9})
        while (void** const block = static_cast<void**>(std::malloc(size)))
            *block = std::exchange(taken, block);
    const std::uint64_t dropped = Manager().GetStatistics().dropped;
    NX_LOG(NX_LOG_LEVEL_INFO) << "neither";
    EXPECT_EQ(Manager().GetStatistics().dropped, dropped + 1);
    setrlimit(RLIMIT_AS, &unlimited);
    while (taken != nullptr)
        std::free(std::exchange(taken, *static_cast<void**>(taken)));
    gate.Open();
}

TEST(nxLogManager, LetsDevicesLogAndLeave)
{
    std::vector<std::string> texts;
    std::unique_ptr<Device> other;
    Device device(
        [&](const nxLog& record)
        {
            const std::string text = record.GetText();
            texts.push_back(text);
            if (text != "first")
                return;
            NX_LOG(NX_LOG_LEVEL_WARNING) << "queued by a device";
            Manager().ImmediateWrite(MakeRecord("immediate"));  // not to itself
            WaitUntilWritten();                                 // not for itself
            Manager().UnregisterLogDevice(&device);
            Manager().RegisterLogDevice(&device);
        });
    nxCapturingLogDevice witness;
    NX_LOG(NX_LOG_LEVEL_INFO) << "first";
    WaitUntilWritten();
    WaitUntilWritten();
    EXPECT_EQ(texts, (std::vector<std::string>{"first", "queued by a device"}));
    EXPECT_EQ(witness.Count(nxCapturingLogDevice::Contains("immediate")), 1u);

    Device throwing([](const nxLog&) { throw std::runtime_error("no"); });
    NX_LOG(NX_LOG_LEVEL_INFO) << "three";
    NX_LOG(NX_LOG_LEVEL_INFO) << "four";
    WaitUntilWritten();
    EXPECT_EQ(throwing.writes, 2);
}

TEST(nxLogManager, WaitsAsLongAsItIsAskedTo)
{
    Gate gate;
    {
        const Device device([&](const nxLog&) { gate.Pass(); });
        NX_LOG(NX_LOG_LEVEL_WARNING) << "hold";
        gate.WaitForAThread();
        for (const double seconds : {std::nan(""), -1.0, 0.0, -std::numeric_limits<double>::infinity(), 0.01})
            Manager().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(seconds));
        Manager().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper::GetNullInstance());
        Manager().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper::GetNoChangeInstance());
        EXPECT_EQ(Manager().GetLogEntriesQueue().size(), 1u);
        gate.Open();
    }
    NX_LOG(NX_LOG_LEVEL_WARNING) << "unheard";
    Manager().WaitForWriteThreadToWriteQueueToDisk(std::numeric_limits<double>::infinity());
    EXPECT_TRUE(Manager().GetLogEntriesQueue().empty());
}

// Two devices that report to each other from inside, on two threads.
TEST(nxLogManager, DevicesThatWriteAtOnceFromInsideDoNotWaitForEachOther)
{
    const auto passOn = [](const nxLog& record)
    {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));  // so that they meet
        if (record.GetLineNumber() == 1)
            Manager().ImmediateWrite(nxLog(NX_LOG_LEVEL_INFO, "inside", 2, nxTimeStamp::Now()));
    };
    Device first(passOn), second(passOn);
    nxInThreads(2,
                [](int)
                {
                    for (int count = 0; count < 5; ++count)
                        Manager().ImmediateWrite(MakeRecord("from outside"));
                });
    EXPECT_GE(first.writes, 10);
    EXPECT_GE(second.writes, 10);
}

TEST(nxLogManager, UnregisteringWaitsForARound)
{
    if (!nxInNewProcess())  // the log may still have to tell of the losses of another test
        return;
    const nxLogLineStyle textAlone{nxLogLineStyle::LevelAndText, false};
    LineDevice slow(textAlone), quick(textAlone);
    slow.delay = std::chrono::milliseconds(100);
    for (int count = 0; count < 256; ++count)
        NX_LOG(NX_LOG_LEVEL_INFO) << count;
    EXPECT_TRUE(nxEventually([] { return Manager().GetLogEntriesQueue().empty(); }));
    Manager().UnregisterLogDevice(&quick);
    EXPECT_EQ(std::count(quick.text.begin(), quick.text.end(), '\n'), 256) << "queued before the call";
}

TEST(nxLogManager, TakesEachDeviceOnceAndCallsItBySeveralThreadsInTurn)
{
    std::atomic<int> inside{0};
    std::atomic<int> most{0};
    std::atomic<int> ours{0};
    Device device(
        [&](const nxLog& record)
        {
            // The log may report by itself that callers had to wait.
            ours += record.GetText() == "at once" || record.GetText() == "queued";
            most = std::max(most.load(), ++inside);
            std::this_thread::yield();
            --inside;
        });
    Manager().UnregisterLogDevice(&device);
    nxLogDevice* const twice[]{&device, nullptr, &device};
    Manager().RegisterLogDevices(twice);
    Manager().RegisterLogDevice(&device);
    Manager().UnregisterLogDevice(nullptr);
    nxInThreads(4,
                []
                {
                    nxLog record = MakeRecord("at once");
                    for (int number = 0; number < 500; ++number)
                    {
                        Manager().ImmediateWrite({&record, nullptr, &record});
                        NX_LOG(NX_LOG_LEVEL_INFO) << "queued";
                        Manager().FlushDevices();
                    }
                });
    WaitUntilWritten();
    EXPECT_EQ(ours, 4 * 500 * 3);
    EXPECT_EQ(most, 1);
    Manager().UnregisterAllLogDevices();
    const int writes = device.writes;
    NX_LOG(NX_LOG_LEVEL_INFO) << "unheard";
    WaitUntilWritten();
    EXPECT_EQ(device.writes, writes);
}

TEST(nxLogManager, FlushesAfterAWarningAndWhenTheTimeHasCome)
{
    Device device;
    WaitUntilWritten();
    Manager().SetTimeBetweenFlushes(3600);
    device.flushes = 0;
    NX_LOG(NX_LOG_LEVEL_INFO) << "can wait";
    EXPECT_TRUE(nxEventually([&] { return device.writes != 0; }));
    std::this_thread::sleep_for(std::chrono::milliseconds(20));  // one more look of the writer
    EXPECT_EQ(device.flushes, 0);
    const auto isFlushed = [&] { return nxEventually([&] { return device.flushes.exchange(0) != 0; }); };
    NX_LOG(NX_LOG_LEVEL_WARNING) << "cannot wait";
    EXPECT_TRUE(isFlushed());
    Manager().SetTimeBetweenFlushes(0);
    NX_LOG(NX_LOG_LEVEL_INFO) << "never waits";
    EXPECT_TRUE(isFlushed());
    Manager().SetTimeBetweenFlushes(1);
}

// Nothing asks for it by waiting: this thread has reported before, and its ring has room.
TEST(nxLogManager, StartsByItselfAfterDestroyAndAfterAStartThatFailed)
{
    const auto becomesOne = [](const std::atomic<int>& count) { return nxEventually([&] { return count >= 1; }); };
    {
        Device device;
        NX_LOG(NX_LOG_LEVEL_INFO) << "before";
        for (int round = 0; round < 2; ++round)
            Manager().Destroy();
        EXPECT_EQ(device.writes.exchange(0), 1);
        EXPECT_EQ(device.destroys, 1);
        const std::uint64_t unheard = Manager().GetStatistics().unheard;
        NX_LOG(NX_LOG_LEVEL_WARNING) << "unheard";
        WaitUntilWritten();
        EXPECT_EQ(Manager().GetStatistics().unheard, unheard + 1);
        EXPECT_EQ(device.writes, 0);
        Manager().Destroy();
        Manager().RegisterLogDevice(&device);
        NX_LOG(NX_LOG_LEVEL_INFO) << "after";
        EXPECT_TRUE(becomesOne(device.writes));
    }
    {
        // Stopping was given up, since a device was stuck: the thread goes on with the next device.
        Gate gate;
        Device stuck([&](const nxLog&) { gate.Pass(); });
        NX_LOG(NX_LOG_LEVEL_INFO) << "stuck";
        gate.WaitForAThread();
        Manager().Destroy();
        Device device;
        gate.Open();
        NX_LOG(NX_LOG_LEVEL_INFO) << "after";
        EXPECT_TRUE(becomesOne(device.writes));
    }
    for (const nxEnumValue level : {NX_LOG_LEVEL_INFO, NX_LOG_LEVEL_ERROR})
    {
        Manager().Destroy();
        const nxSystemCallFault fault("pthread_create", EAGAIN);
        std::atomic<int> writtenByItsThread{0};
        static thread_local bool reports = false;
        Device device([&](const nxLog&) { writtenByItsThread += !reports; });
        EXPECT_EQ(fault.GetHits(), 1U);
        // The next attempt is made a second later, by a thread that is new or has something to warn of.
        const auto log = [&](int)
        {
            reports = true;
            for (int count = 0; count < 1'500 && writtenByItsThread == 0; ++count)
            {
                NX_LOG(level) << "again";
                nxLog record = MakeRecord("again");  // finds room in another way
                Manager().Write(record);
                std::this_thread::sleep_for(std::chrono::milliseconds(2));
            }
        };
        if (level == NX_LOG_LEVEL_INFO)
            nxInThreads(1, log);
        else
            log(0);
        reports = false;
        EXPECT_TRUE(becomesOne(writtenByItsThread));
    }
}

TEST(nxLogManager, GivesLineSinksFinishedLinesInTheirStyle)
{
    LineDevice full({nxLogLineStyle::Full, true});
    LineDevice brief({nxLogLineStyle::LevelAndText, false});
    std::string expectedFull;
    std::string expectedBrief;
    for (int number = 0; number < 30'000; ++number)
    {
        // Times and levels that stay, change and come back; one time that no calendar knows.
        const nxTimeStamp time(number == 99 ? std::numeric_limits<long long>::max() : number / 100 % 60,
                               static_cast<unsigned>(number) * 123'457 % 1'000'000'000);
        const nxEnumValue level = number % 5'000 < 4'000 ? NX_LOG_LEVEL_INFO : NX_LOG_LEVEL_DEBUG;
        nxLog record(number == 77 ? NX_LOG_LEVEL_ERROR : level, "manager test", 1, time);
        record << "line " << number;
        nxLogLine::Append(expectedFull, record, full.style);
        nxLogLine::Append(expectedBrief, record, brief.style);
        Manager().Write(record);
    }
    WaitUntilWritten();
    EXPECT_TRUE(full.text == expectedFull);
    EXPECT_TRUE(brief.text == expectedBrief);
    EXPECT_EQ(full.worstLevel, NX_LOG_LEVEL_ERROR);
    EXPECT_LE(full.largest, (std::size_t{1} << 20) + 200);

    // Days are not mixed.
    full.batches.clear();
    for (const long long day : {1, 1, 2, 2, 2, 1})
    {
        nxLog record(NX_LOG_LEVEL_INFO, "x", 1, nxTimeStamp(day * 86'400 + 43'200, 0));
        Manager().Write(record);
    }
    WaitUntilWritten();
    long long last = 0;
    int changes = 0;
    for (const long long seconds : full.batches)
        changes += std::exchange(last, seconds / 86'400) != seconds / 86'400;
    EXPECT_EQ(changes, 3);
}

TEST(nxLogManager, HearsThreadsThatComeAndGoToTheirVeryEnd)
{
    struct LogsAtThreadExit
    {
        ~LogsAtThreadExit() { NX_LOG(NX_LOG_LEVEL_INFO) << "from a thread-local's destructor"; }
    };
    std::atomic<int> heard{0};
    Device device([&heard](const nxLog& record) { heard += record.GetText().compare(0, 5, "from ") == 0; });
    constexpr int threads = 600;
    for (int index = 0; index < threads; ++index)
        nxInThreads(1,
                    []
                    {
                        static thread_local LogsAtThreadExit last;
                        static_cast<void>(&last);
                        NX_LOG(NX_LOG_LEVEL_INFO) << "from the thread";
                    });
    WaitUntilWritten();
    EXPECT_EQ(heard, 2 * threads);
    EXPECT_LE(Manager().GetStatistics().bytes, std::uint64_t{65} << 20);
}

// A thread that reports from inside a device does not wait for room: its record is dropped. After some of them only a
// jump to the start of the ring is left then.
TEST(nxLogManager, GivesBackTheRingsOfThreadsWhoseLastRecordWasDropped)
{
    if (!nxInNewProcess())  // the log tells of waits and losses later, when another test may count records
        return;
    Manager().SetMaximumQueueBytes(leastRoom);
    constexpr int threads = 45;
    constexpr std::uint64_t ring = 16 << 10;  // of the log's thread, which tells of the loss
    Gate gate;
    Device inside(
        [](const nxLog& record)
        {
            if (record.GetText() == "inside")
                NX_LOG(NX_LOG_LEVEL_INFO) << std::string(300'000, 'd');
        });
    Device stuck(
        [&gate](const nxLog& record)
        {
            if (record.GetText() == "hold")
                gate.Pass();
        });
    NX_LOG(NX_LOG_LEVEL_INFO) << "this thread has its ring";
    WaitUntilWritten();
    const nxLogStatistics before = Manager().GetStatistics();
    std::barrier<> together(threads + 1);
    const auto fill = [&](int index)
    {
        // Up to different distances from the end of the small ring, the last ones to where nothing more fits in.
        for (int count = 0; count <= 55 + index / 3; ++count)
            NX_LOG(NX_LOG_LEVEL_INFO) << std::string(200, 'f');
        together.arrive_and_wait();
        together.arrive_and_wait();
        Manager().ImmediateWrite(MakeRecord("inside"));
    };
    std::vector<nxJoinedThread> filling;
    for (int index = 0; index < threads; ++index)
        filling.emplace_back(fill, index);
    together.arrive_and_wait();
    WaitUntilWritten();
    NX_LOG(NX_LOG_LEVEL_INFO) << "hold";
    gate.WaitForAThread();
    NX_LOG(NX_LOG_LEVEL_INFO) << std::string(1'000'000, 'b');
    together.arrive_and_wait();
    EXPECT_TRUE(nxEventually([&] { return Manager().GetStatistics().dropped == before.dropped + threads; }));
    gate.Open();
    filling.clear();
    EXPECT_TRUE(nxEventually(
        [&]
        {
            WaitUntilWritten();
            return Manager().GetStatistics().bytes <= before.bytes + ring;
        }))
        << Manager().GetStatistics().bytes << " for " << before.bytes;
}

TEST(nxLogManager, IdleThreadsLeaveTheQueueToTheBusyOnes)
{
    Device device;
    const std::uint64_t before = Manager().GetStatistics().bytes;
    constexpr unsigned threads = 100;
    std::barrier<> together(threads);
    nxInThreads(threads,
                [&](int index)
                {
                    NX_LOG(NX_LOG_LEVEL_INFO) << "here";
                    together.arrive_and_wait();
                    if (index == 0)
                    {
                        EXPECT_LT(Manager().GetStatistics().bytes - before, threads * (std::uint64_t{20} << 10));
                    }
                    together.arrive_and_wait();
                });
}

TEST(nxLogManager, SleepsInAnIdleProcessExceptForStatementsOfTheFirstVersion)
{
    if (syscall(SYS_membarrier, MEMBARRIER_CMD_QUERY, 0, 0) < 0)
        GTEST_SKIP() << "the system has no membarrier()";
    if (!nxInNewProcess())  // it has statements of the first version afterwards
        return;
    LineDevice device({});
    const auto looksInHalfASecond = [&device]
    {
        const unsigned before = device.looks;
        std::this_thread::sleep_for(std::chrono::milliseconds(500));
        return device.looks - before;
    };
    EXPECT_TRUE(nxEventually([&] { return looksInHalfASecond() <= 2; }));
    const std::uint64_t written = Manager().GetStatistics().written;
    NX_LOG(NX_LOG_LEVEL_INFO) << "after silence";
    EXPECT_TRUE(nxEventually([&] { return Manager().GetStatistics().written == written + 1; }));
    nxLogSite site("old", 1);
    nxLogChannel::Close(FirstVersion::_OpenFirst(site.GetSource()), NX_LOG_LEVEL_INFO);
    EXPECT_TRUE(nxEventually(
        [&]
        {
            const unsigned looks = looksInHalfASecond();
            return 4 <= looks && looks <= 10;
        }));
}

// From the warning level on, by the thread that reports it.
TEST(nxLogManager, WritesWarningsAndSaysSoOnceWhileItsThreadCannotBeStarted)
{
    if (!nxInNewProcess())
        return;
    const nxScratchDirectory scratch;
    const std::string told = scratch.GetPath() / "told";
    {
        const nxRedirected redirected(STDERR_FILENO, open(told.c_str(), O_WRONLY | O_CREAT, 0600));
        const nxSystemCallFault fault("pthread_create", EAGAIN, {.times = 100, .anyThread = true});
        Device device;
        NX_LOG(NX_LOG_LEVEL_INFO) << "can wait";
        EXPECT_EQ(device.writes, 0);
        int expected = 1;
        for (const nxEnumValue level : {NX_LOG_LEVEL_WARNING, NX_LOG_LEVEL_ERROR, NX_LOG_LEVEL_FATAL})
        {
            NX_LOG(level) << "now";
            EXPECT_EQ(device.writes, ++expected);
            nxLog record = MakeRecord("now", level);
            Manager().Write(record);
            EXPECT_EQ(device.writes, ++expected);
        }
    }
    EXPECT_EQ(nxReadFile(told),
              "Failed to start the log's thread: warnings and worse are written by the threads that report them, other "
              "records wait.\n");
}

// A single record, while other threads say how the log's thread is to run.
TEST(nxLogManager, StartsItsThreadAlsoWhileThatIsBeingAdjusted)
{
    const auto adjust = [] { Manager().SetWriteThread({}); };
    const nxBusyThread adjusting[] = {nxBusyThread(adjust), nxBusyThread(adjust), nxBusyThread(adjust)};
    bool isWritten = true;
    for (int round = 0; round < 50 && isWritten; ++round)
    {
        Manager().Destroy();
        std::atomic<bool> hasCome{false};
        Device device([&](const nxLog&) { hasCome = true; });
        nxLog record = MakeRecord("alone");
        Manager().Write(record);
        for (int wait = 0; wait < 30'000 && !hasCome; ++wait)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        isWritten = hasCome;
    }
    EXPECT_TRUE(isWritten);
}

TEST(nxLogManager, WritesTheWarningOfAnotherThreadWhileItsThreadFailsToStart)
{
    if (!nxInNewProcess())  // its thread is not tried again for a second
        return;
    const auto warn = [] { nxInThreads(1, [] { NX_LOG(NX_LOG_LEVEL_WARNING) << "meanwhile"; }); };
    const nxSystemCallFault fault("pthread_create", EAGAIN, {.meanwhile = warn});
    const Device device;
    EXPECT_EQ(device.writes, 1);
}

// A program without threads of its own may change it at any time.
TEST(nxLogManager, ItsThreadLeavesTheEnvironmentAlone)
{
    if (!nxInNewProcess())  // in which nothing has asked for a local time
        return;
    LineDevice device({nxLogLineStyle::Full, true});
    constexpr std::size_t size = 4'096;
    void* const page = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    ASSERT_NE(page, MAP_FAILED);
    char** const before = std::exchange(environ, static_cast<char**>(page));
    EXPECT_EQ(mprotect(page, size, PROT_NONE), 0);
    for (int round = 0; round < 600; ++round)  // more than go without a look at the zone
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << round;
        WaitUntilWritten();
    }
    environ = before;
    munmap(page, size);
    EXPECT_EQ(std::count(device.text.begin(), device.text.end(), '\n'), 600);

    for (const auto& [zone, expected] :
         {std::pair("FIX-5:30", "01Jan70 05:30:00"), std::pair("FIX3", "31Dec69 21:00:00")})
    {
        const nxZoneOfProcess set(zone);
        nxLog record(NX_LOG_LEVEL_INFO, "manager test", 1, nxTimeStamp(0, 0));
        Manager().Write(record);
        WaitUntilWritten();
        EXPECT_NE(device.text.find(expected), std::string::npos) << device.text.substr(device.text.size() - 100);
    }
}
