// SPDX-License-Identifier: Apache-2.0
// nxWindowsMutex and nxWindowsSemaphore: names, life and owners.

#include "core/thread/nxWindowsMutex.h"
#include "core/thread/nxWindowsSemaphore.h"
#include "tests/support/nxPrivateMemory.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"
#include "tests/thread/nxNamedObjects.h"

namespace
{
// A name that no other test, run or process uses.
std::string Unique(const std::string& text) { return text + '/' + std::to_string(getpid()); }

// The counts that a process which comes now finds.
void ExpectInNewProcess(const std::string& name, unsigned initial, unsigned count)
{
    EXPECT_TRUE(nxInChild([&] { EXPECT_EQ(CountIn(name, initial), count); }));
}
}  // namespace

TEST(namedObjects, EveryNameIsItsOwnAndStandsForOneKind)
{
    const std::string longest(260 - Unique("").size(), 'x');
    std::vector<std::string> names{"", "/", "..", "../..", "a", "A", "a/b", "a_b", "\xff", "%2F", "line\r\nbreak"};
    names.insert(names.end(), {std::string("a\0b", 3), std::string("a\0c", 3), longest});
    std::deque<nxWindowsSemaphore> semaphores;
    for (unsigned i = 0; i < names.size(); ++i)
    {
        semaphores.emplace_back(Unique(names[i]), i, 100);
        EXPECT_FALSE(semaphores.back().IsNull()) << names[i];
    }
    for (unsigned i = 0; i < names.size(); ++i)
    {
        nxWindowsSemaphore again(Unique(names[i]), 99, 99);
        EXPECT_EQ(Drain(again), i) << names[i] << ": the first one's counts hold";
        EXPECT_TRUE(nxWindowsMutex(Unique(names[i])).IsNull()) << names[i] << ": another kind";
    }
    EXPECT_TRUE(nxWindowsMutex(Unique(longest + 'x')).IsNull());
    EXPECT_TRUE(nxWindowsSemaphore(std::string(100'000, 'x'), 1, 1).IsNull());
    nxWindowsMutex mutex(Unique("kind"));
    EXPECT_FALSE(mutex.IsNull());
    EXPECT_TRUE(nxWindowsSemaphore(Unique("kind"), 1, 1).IsNull());
}

TEST(namedObjects, NullObjectsReturnSuccessAndErrnoHasTheReason)
{
    const nxCapturingLogDevice log;
    nxWindowsMutex mutex(std::string(261, 'n'));
    EXPECT_EQ(errno, ENAMETOOLONG);
    EXPECT_TRUE(mutex.IsNull());
    EXPECT_TRUE(mutex.Lock().IsOK());
    EXPECT_TRUE(mutex.Unlock().IsOK());

    const std::string name = Unique("counts");
    for (const auto& [initial, maximum] : {std::pair{0U, 0U}, {2U, 1U}, {0U, 2147483648U}, {0U, 4294967295U}})
    {
        nxWindowsSemaphore refused(name, initial, maximum);
        EXPECT_EQ(errno, EINVAL);
        EXPECT_TRUE(refused.IsNull()) << initial << ' ' << maximum;
        EXPECT_TRUE(refused.Wait().IsOK());
        EXPECT_TRUE(refused.TimedWait(1e9).IsOK());
        EXPECT_TRUE(refused.Post().IsOK());
    }
    nxWindowsSemaphore made(name, 2147483647, 2147483647);
    EXPECT_FALSE(made.IsNull()) << "what was refused has left nothing behind";
    EXPECT_FALSE(nxWindowsSemaphore(name, 0, 0).IsNull()) << "counts are not looked at when the name is there";
    EXPECT_TRUE(nxWindowsMutex(name).IsNull());
    EXPECT_EQ(errno, EEXIST);
    WaitUntilWritten();
    EXPECT_TRUE(log.GetRecords().empty()) << "constructors report nothing: " << log;
}

TEST(namedObjects, ASemaphoreNeverExceedsItsMaximum)
{
    nxWindowsSemaphore semaphore(Unique("maximum"), 1, 3);
    for (int i = 0; i < 10; ++i)
        EXPECT_TRUE(semaphore.Post().IsOK());
    EXPECT_EQ(Drain(semaphore), 3U);
    constexpr double infinity = std::numeric_limits<double>::infinity();
    for (const double past : {0.0, 0.0009, -1.0, -infinity, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(semaphore.TimedWait(past), NX_ERR_THR_TIMEDOUT) << past;
    EXPECT_EQ(semaphore.TimedWait(std::chrono::milliseconds(150)), NX_ERR_THR_TIMEDOUT) << "longer than one sleep";
    for (const double seconds : {60.0, 4294968.0, 1e300, infinity})
    {
        const nxJoinedThread poster(
            [&]
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                EXPECT_TRUE(semaphore.Post().IsOK());
            });
        EXPECT_TRUE(semaphore.TimedWait(seconds).IsOK()) << seconds;
    }
}

TEST(namedObjects, EveryPostWakesAWaiter)
{
    nxWindowsSemaphore items(Unique("items"), 0, 2147483647);
    nxInThreads(4,
                [&](int thread)
                {
                    for (int n = 0; n < 3'000; ++n)
                        EXPECT_TRUE((thread % 2 == 0 ? items.Post() : items.Wait()).IsOK());
                });
    EXPECT_EQ(Drain(items), 0U);
}

TEST(namedObjects, ASemaphoreHandsOverWhatItsPosterHasWritten)
{
    nxWindowsSemaphore room(Unique("room"), 1, 1);
    nxWindowsSemaphore filled(Unique("filled"), 0, 1);
    int item = 0;
    int faults = 0;
    nxInThreads(2,
                [&](int index)
                {
                    for (int number = 1; number <= 2'000; ++number)
                    {
                        EXPECT_TRUE((index == 0 ? room : filled).Wait().IsOK());
                        if (index == 0)
                            item = number;
                        else
                            faults += item != number;
                        EXPECT_TRUE((index == 0 ? filled : room).Post().IsOK());
                    }
                });
    EXPECT_EQ(faults, 0);
}

TEST(namedObjects, AMutexBelongsToAThreadAndCounts)
{
    const std::string name = Unique("owner");
    nxWindowsMutex mutex(name);
    nxWindowsMutex same(name);
    std::atomic<bool> entered{false};
    EXPECT_TRUE(mutex.Lock().IsOK());
    [&]() NX_NO_THREAD_SAFETY_ANALYSIS { EXPECT_TRUE(same.Lock().IsOK()); }();
    nxJoinedThread other(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            nxWindowsMutex third(name);
            EXPECT_TRUE(third.Lock().IsOK());
            entered = true;  // and ends as the owner
        });
    EXPECT_TRUE(mutex.Unlock().IsOK());
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered) << "locked twice, unlocked once";
    [&]() NX_NO_THREAD_SAFETY_ANALYSIS { EXPECT_TRUE(same.Unlock().IsOK()); }();
    other.join();
    EXPECT_TRUE(entered);
    EXPECT_TRUE(mutex.Lock().IsOK());
    EXPECT_TRUE(mutex.Unlock().IsOK());
}

TEST(namedObjects, OneDescriptorServesAllNames)
{
    // In a child, where the log has no thread that opens and closes files.
    EXPECT_TRUE(nxInChild(
        []
        {
            nxWindowsMutex first(Unique("descriptor"));
            const std::size_t before = EntriesOf("/proc/self/fd");
            for (int i = 0; i < 10'000; ++i)
                EXPECT_FALSE(nxWindowsMutex(Unique("descriptor" + std::to_string(i % 300))).IsNull());
            EXPECT_EQ(EntriesOf("/proc/self/fd"), before);
        }));
}

TEST(namedObjects, ANameLivesAsLongAsAProcessThatHasItOpen)
{
    const std::string name = Unique("life");
    nxStage stage;
    nxChildProcess creator(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 3, 5);
            EXPECT_TRUE(semaphore.Wait().IsOK());
            stage.Reach(1);
            pause();
        });
    stage.WaitFor(1);
    nxChildProcess second(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 5, 5);
            EXPECT_EQ(Drain(semaphore), 2U) << "opened, not made";
            EXPECT_TRUE(semaphore.Post().IsOK());
            stage.Reach(2);
            pause();
        });
    stage.WaitFor(2);
    creator.Kill();
    ExpectInNewProcess(name, 5, 1);  // the second still has it open
    second.Kill();
    EXPECT_TRUE(nxInChild([&] { EXPECT_FALSE(nxWindowsMutex(name).IsNull()) << "it may become another kind"; }));
    ExpectInNewProcess(name, 4, 4);
}

TEST(namedObjects, AForkedChildSharesWhatIsOpenAndOwnsNothing)
{
    const std::string name = Unique("fork");
    nxStage stage;
    nxWindowsMutex mutex(name);
    EXPECT_TRUE(mutex.Lock().IsOK());
    nxChildProcess child(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            EXPECT_TRUE(mutex.Unlock().IsOK()) << "a lock of the parent is left alone";
            stage.Reach(1);
            EXPECT_TRUE(mutex.Lock().IsOK());
            stage.Reach(2);  // ends as the owner
        });
    stage.WaitFor(1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(stage.Get(), 1) << "the parent still holds it";
    EXPECT_TRUE(mutex.Unlock().IsOK());
    EXPECT_TRUE(child.Succeeds());
    EXPECT_EQ(stage.Get(), 2);
    EXPECT_TRUE(mutex.Lock().IsOK());
    EXPECT_TRUE(mutex.Unlock().IsOK());
}

TEST(namedObjects, AForkedChildKeepsNamesAliveAndItsOwnNamesDieWithIt)
{
    const std::string inherited = Unique("inherited");
    const std::string own = Unique("own");
    nxStage stage;
    EXPECT_TRUE(nxInChild(
        [&]
        {
            nxWindowsSemaphore semaphore(inherited, 1, 5);
            EXPECT_TRUE(semaphore.Wait().IsOK());
            if (fork() == 0)
            {
                alarm(60);
                stage.WaitFor(1);  // by now the parent has gone
                EXPECT_EQ(CountIn(inherited, 1), 0U);
                stage.Reach(2);
                stage.WaitFor(3);
                _exit(0);
            }
        }));
    stage.Reach(1);
    stage.WaitFor(2);
    ExpectInNewProcess(inherited, 1, 0);
    stage.Reach(3);

    nxChildProcess survivor(
        [&]
        {
            nxWindowsMutex mutex(inherited + "2");
            EXPECT_TRUE(nxInChild([&] { EXPECT_TRUE(nxWindowsSemaphore(own, 1, 5).Wait().IsOK()); }));
            stage.Reach(4);
            pause();
        });
    stage.WaitFor(4);
    EXPECT_EQ(CountIn(own, 1), 1U) << "its only user has ended, although the user's parent lives";
}

TEST(namedObjects, AProcessThatClosesAllDescriptorsClaimsItsNamesAgain)
{
    // Between the closing and the claim any process could take the names, so no other process may use them.
    if (!nxPrivateMemory::InNewProcess())
        return;
    const std::string name = Unique("closed");
    nxStage stage;
    nxChildProcess daemon(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 1, 5);
            EXPECT_TRUE(semaphore.Wait().IsOK());
            for (int descriptor = 3; descriptor < 1024; ++descriptor)
                close(descriptor);
            const int another = open("/dev/zero", O_RDWR);  // probably under the old number
            EXPECT_FALSE(nxWindowsMutex(name + "2").IsNull());
            EXPECT_NE(fcntl(another, F_GETFD), -1) << "a descriptor that is not the table's is left alone";
            stage.Reach(1);
            pause();
        });
    stage.WaitFor(1);
    EXPECT_EQ(CountIn(name, 1), 0U) << "still open in the other process";
}
