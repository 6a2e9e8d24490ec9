// SPDX-License-Identifier: Apache-2.0
// Functor queues, threads and pools: each functor runs once or is destroyed once, whatever happens to the threads, and the counts
// say which.

#include "core/thread/nxFunctorThread.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
using Priority = nxFunctorQueue::Priority;
using StopMode = nxFunctorQueue::StopMode;

constexpr double forever = 60;  // seconds; a test that waits for them has failed

// One line for a post, wherever its functor ends.
void Ok(const nxErrorEnum& error) { EXPECT_TRUE(error.IsOK()) << error; }

// A functor that counts its calls, and its destructions but for those of what it was moved from.
class Traced
{
public:
    struct Counts
    {
        std::atomic<int> calls{0}, destroyed{0};
    };
    explicit Traced(Counts& counts) : _counts(&counts) {}
    Traced(Traced&& other) noexcept : _counts(std::exchange(other._counts, nullptr)) {}
    ~Traced()
    {
        if (_counts != nullptr)
            ++_counts->destroyed;
    }
    void operator()() { ++_counts->calls; }

private:
    Counts* _counts;
};

struct ThrowsAtItsEnd
{
    bool isOwn = true;
    ThrowsAtItsEnd() = default;
    ThrowsAtItsEnd(ThrowsAtItsEnd&& other) noexcept : isOwn(std::exchange(other.isOwn, false)) {}
    ~ThrowsAtItsEnd() noexcept(false)
    {
        if (isOwn)
            throw std::runtime_error("at the end");
    }
    void operator()() const {}
};

void ExpectNothingLost(const nxFunctorQueue::Counts& counts)
{
    EXPECT_EQ(counts.posted, counts.run + counts.abandoned);
    EXPECT_EQ(counts.queued, 0U);
}

// A thread in whose functor a gate is closed.
class HeldThread
{
public:
    HeldThread()
    {
        Ok(thread.Start({.capacity = 8}));
        Ok(thread.Post([this] { gate.Pass(); }));
        gate.WaitForAThread();
    }
    ~HeldThread() { gate.Open(); }

    nxGate gate;
    nxFunctorThread thread;
};
}  // namespace

TEST(nxFunctorQueue, RunsByPriorityAndOrderAndRefusesWhatDoesNotFit)
{
    nxFunctorQueue queue(4);
    std::string order;
    const auto add = [&order](char name) { return [&order, name] { order += name; }; };
    EXPECT_EQ(queue.RunOne(0), NX_ERR_THR_TIMEDOUT);
    Ok(queue.Post(add('c'), Priority::Low));
    Ok(queue.Post(add('b')));
    Ok(queue.Post(add('a'), Priority::High));
    Ok(queue.Post(add('d'), Priority::Low));
    for (const double seconds : {0.0, -1.0, std::nan(""), 0.001})
        EXPECT_EQ(queue.TimedPost(add('x'), seconds), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(queue.Post(static_cast<void (*)()>(nullptr)), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(queue.Post(std::function<void()>()), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(queue.Post(add('x'), static_cast<Priority>(3)), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(queue.WaitIdle(0.001), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(queue.Stop(StopMode::Drain), 0U);
    EXPECT_EQ(queue.Post(add('x')), NX_ERR_THR_NOT_RUNNING);
    while (queue.RunOne(forever).IsOK())
    {
    }
    EXPECT_EQ(queue.RunOne(forever), NX_ERR_THR_NOT_RUNNING);
    Ok(queue.WaitIdle(0));
    EXPECT_EQ(order, "abcd");
    const nxFunctorQueue::Counts counts = queue.GetCounts();
    EXPECT_EQ(counts.mostQueued, 4U);
    EXPECT_EQ(counts.refused, 5U);
    ExpectNothingLost(counts);
    EXPECT_THROW(nxFunctorQueue{std::numeric_limits<std::size_t>::max()}, std::bad_alloc);
}

TEST(nxFunctorQueue, DestroysOnceWhatDoesNotRun)
{
    Traced::Counts counts;
    {
        nxFunctorQueue queue(0);  // one place
        Ok(queue.Post(Traced(counts)));
        EXPECT_EQ(queue.TimedPost(Traced(counts), 0), NX_ERR_THR_TIMEDOUT);
        Ok(queue.RunOne(0));
        Ok(queue.Post([large = std::array<char, 100>(), traced = Traced(counts)] { static_cast<void>(large); }));
        EXPECT_EQ(queue.Stop(StopMode::Drain), 0U);
        EXPECT_EQ(queue.Stop(StopMode::Abandon), 1U);
        EXPECT_EQ(queue.Post(Traced(counts)), NX_ERR_THR_NOT_RUNNING);
        EXPECT_EQ(queue.RunOne(0), NX_ERR_THR_NOT_RUNNING);
    }
    EXPECT_EQ(counts.calls, 1);
    EXPECT_EQ(counts.destroyed, 4);
}

TEST(nxFunctorQueue, AFunctorThatWouldWaitForItsOwnQueueIsRefused)
{
    nxFunctorQueue queue(1);
    std::vector<nxErrorEnum> errors;
    const auto nothing = [] {};
    const auto waits = [&]
    {
        errors = {queue.Post(nothing), queue.Post(nothing), queue.TimedPost(nothing, 0), queue.RunOne(forever),
                  queue.WaitIdle(forever)};
    };
    Ok(queue.Post(waits));
    Ok(queue.RunOne(0));
    const nxErrorEnum deadlock(NX_ERR_THR_DEADLOCK);
    EXPECT_EQ(errors, (std::vector{nxErrorEnum(), deadlock, deadlock, deadlock, deadlock}));
}

TEST(nxFunctorQueue, AFunctorMayDestroyItsQueue)
{
    Traced::Counts counts;
    auto* const queue = new nxFunctorQueue(4);
    Ok(queue->Post([queue] { delete queue; }));
    Ok(queue->Post(Traced(counts)));
    Ok(queue->RunOne(0));
    EXPECT_EQ(counts.destroyed, 1);

    for (const unsigned threads : {1U, 3U})  // the thread of the functor goes on alone
    {
        std::atomic<bool> hasEnded{false};
        nxGate gate;
        auto* const pool = new nxFunctorThreadPool;
        Ok(pool->Start(threads));
        const auto destroy = [&gate, &hasEnded, pool]
        {
            gate.Pass();
            delete pool;
            hasEnded = true;
        };
        Ok(pool->Post(destroy));
        gate.Open();
        EXPECT_TRUE(nxEventually([&] { return hasEnded.load(); }));
    }
}

TEST(nxFunctorQueue, ReportsExceptionsAndGoesOn)
{
    nxCapturingLogDevice log;
    nxFunctorThread thread;
    Ok(thread.Start());
    Ok(thread.Post([] { throw std::runtime_error("no price"); }));
    Ok(thread.Post([] { throw 7; }));
    Ok(thread.Post(ThrowsAtItsEnd()));
    Ok(thread.Post([] {}));
    Ok(thread.WaitIdle(forever));
    EXPECT_EQ(thread.GetCounts().run, 4U);
    EXPECT_EQ(thread.GetCounts().threw, 3U);
    EXPECT_EQ(TakeReports(log, "core/trunk/nxFunctorQueue", false),
              (std::vector<std::string>{"ERR A functor ended with an exception: no price",
                                        "ERR A functor ended with an exception: of unknown type",
                                        "ERR The destructor of a functor ended with an exception: at the end"}));
}

TEST(nxFunctorThread, StartsOnceAndTellsItsState)
{
    nxFunctorThread thread;
    const auto nothing = [] {};
    EXPECT_EQ(thread.Post(nothing), NX_ERR_NOT_INITIALISED);
    EXPECT_EQ(thread.WaitIdle(0), NX_ERR_NOT_INITIALISED);
    EXPECT_EQ(thread.Wait(0), NX_ERR_NOT_INITIALISED);
    EXPECT_EQ(thread.Start({.capacity = 0}), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(thread.Start({.capacity = std::numeric_limits<std::size_t>::max()}), NX_ERR_INSUFFICIENT_MEMORY);
    for (const int processor : {-1, 1023, 5000})
        EXPECT_EQ(thread.Start({.processors = {processor}}), NX_ERR_THR_FAILED_TO_SET_SCHEDULER_PARAMATERS);
    Ok(thread.Start({.name = "a name of more than fifteen"}));
    EXPECT_EQ(thread.Start(), NX_ERR_THR_ALREADY_STARTED);
    char name[16];
    sigset_t blocked;
    nxErrorEnum inside;
    const auto look = [&]
    {
        pthread_getname_np(pthread_self(), name, sizeof name);
        pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
        inside = thread.Wait(forever);
    };
    Ok(thread.Post(look));
    EXPECT_EQ(thread.Wait(0.001), NX_ERR_THR_TIMEDOUT);
    thread.Stop(StopMode::Drain);
    Ok(thread.Wait(forever));
    EXPECT_STREQ(name, "a name of more ");
    EXPECT_TRUE(sigismember(&blocked, SIGTERM) == 1 && sigismember(&blocked, SIGSEGV) == 0);
    EXPECT_EQ(inside, NX_ERR_THR_DEADLOCK);
    Ok(thread.Wait(0));
    EXPECT_EQ(thread.Post(nothing), NX_ERR_THR_NOT_RUNNING);
    EXPECT_EQ(thread.Start(), NX_ERR_THR_ALREADY_STARTED);

    nxFunctorThreadPool pool;
    EXPECT_EQ(pool.Start(0), NX_ERR_INVALID_PARAMETER);
    for (const unsigned started : {0U, 1U})
    {
        const nxSystemCallFault fault("pthread_create", EAGAIN, {.skip = started});
        EXPECT_EQ(pool.Start(2), NX_ERR_THR_RESOURCE);
    }
    Ok(pool.Start(2));
}

// The functors that the thread has taken together with a first one wait as if it had not.
TEST(nxFunctorThread, ABatchIsNotSeen)
{
    std::string order;
    Traced::Counts counts;
    HeldThread held;
    nxGate inBatch, urgent;
    Ok(held.thread.Post([&inBatch] { inBatch.Pass(); }));
    for (const char name : {'2', '3'})
        Ok(held.thread.Post([&order, name] { order += name; }));
    Ok(held.thread.Post(Traced(counts)));
    held.gate.Open();
    inBatch.WaitForAThread();
    EXPECT_EQ(held.thread.GetCounts().queued, 3U);
    Ok(held.thread.Post([&order] { order += '1'; }, Priority::High));
    Ok(held.thread.Post([&urgent] { urgent.Pass(); }, Priority::High));
    inBatch.Open();
    urgent.WaitForAThread();
    EXPECT_EQ(order, "1");
    for (int i = 0; i < 5; ++i)
        Ok(held.thread.TimedPost([] {}, 0));
    EXPECT_EQ(held.thread.TimedPost([] {}, 0), NX_ERR_THR_TIMEDOUT);
    EXPECT_EQ(held.thread.Stop(StopMode::Abandon), 8U);
    EXPECT_EQ(counts.destroyed, 1);
    urgent.Open();
    Ok(held.thread.Wait(forever));
    EXPECT_EQ(order, "1");
    ExpectNothingLost(held.thread.GetCounts());
}

TEST(nxFunctorThread, ALongFunctorDoesNotHoldUpAThreadThatWaitsForRoom)
{
    HeldThread held;
    nxGate longOne;
    Ok(held.thread.Post([&longOne] { longOne.Pass(); }));
    for (int i = 1; i < 8; ++i)
        Ok(held.thread.Post([] {}));
    nxJoinedThread other([&] { held.gate.Open(); });
    Ok(held.thread.Post([] {}));
    longOne.Open();  // only now
    Ok(held.thread.WaitIdle(forever));
}

TEST(nxFunctorThreadPool, RunsEachFunctorOnceAndEachProducersInOrder)
{
    const int each = nxUnderThreadSanitizer || nxUnderAddressSanitizer ? 5'000 : 250'000;
    constexpr int producers = 4;
    for (const auto& [threads, capacity] : {std::pair{1U, 1U}, {1U, 3U}, {1U, 1000U}, {3U, 1U}, {3U, 1000U}})
    {
        nxFunctorThreadPool pool;
        Ok(pool.Start(threads, {.capacity = capacity}));
        const int count = capacity < 10 ? 2'000 : each;
        std::vector<std::atomic<char>> runs(static_cast<std::size_t>(producers * count));
        std::array<std::atomic<int>, producers> last{};
        std::atomic<int> disorder{0};
        const auto produce = [&](int producer)
        {
            for (int i = 0; i < count; ++i)
            {
                const auto post = [&](auto kept)
                {
                    return pool.Post(
                        [&, producer, i, kept = std::move(kept)]
                        {
                            static_cast<void>(kept);  // an int is copied as bytes, a pointer is moved
                            ++runs[static_cast<std::size_t>(producer * count + i)];
                            disorder += last[static_cast<std::size_t>(producer)].exchange(i) > i;
                        });
                };
                Ok(i % 2 == 0 ? post(i) : post(std::make_unique<int>(i)));  // plain bytes, and not
            }
        };
        nxInThreads(producers, produce);
        Ok(pool.WaitIdle(forever));
        EXPECT_TRUE(std::all_of(runs.begin(), runs.end(), [](const auto& times) { return times == 1; }));
        EXPECT_TRUE(threads > 1 || disorder == 0);
        EXPECT_LE(pool.GetCounts().mostQueued, capacity);
        ExpectNothingLost(pool.GetCounts());
    }
}

TEST(nxFunctorThreadPool, AStopInTheMiddleLosesNothingFromTheCounts)
{
    for (int round = 0; round < 60; ++round)
    {
        Traced::Counts counts;
        std::atomic<int> accepted{0}, tried{0};
        {
            nxFunctorThreadPool pool;
            Ok(pool.Start(round % 3 == 0 ? 2 : 1, {.capacity = round % 2 == 0 ? 2U : 64U}));
            const auto work = [&](int number)
            {
                if (number == 2)
                {
                    EXPECT_TRUE(nxEventually([&] { return tried > 10 * round; }));
                    pool.Stop(round % 4 < 2 ? StopMode::Abandon : StopMode::Drain);
                    return;
                }
                for (nxErrorEnum error; error != NX_ERR_THR_NOT_RUNNING; accepted += error.IsOK())
                    error = pool.TimedPost(Traced(counts), number == 0 ? forever : 0,
                                           ++tried % 5 == 0 ? Priority::High : Priority::Normal);
            };
            nxInThreads(3, work);
            Ok(pool.Wait(forever));
            ExpectNothingLost(pool.GetCounts());
            EXPECT_EQ(pool.GetCounts().posted, static_cast<unsigned long long>(accepted));
            EXPECT_EQ(pool.GetCounts().run, static_cast<unsigned long long>(counts.calls));
        }
        EXPECT_EQ(counts.destroyed, tried);
    }
}

TEST(nxFunctorThreadPool, AThreadThatIsUnwoundLeavesTheRestToTheOthers)
{
    Traced::Counts counts;
    nxFunctorThreadPool pool;
    Ok(pool.Start(2));
    Ok(pool.Post([traced = Traced(counts)] { pthread_exit(nullptr); }));
    Ok(pool.WaitIdle(forever));
    EXPECT_EQ(counts.destroyed, 1);
    nxGate gate;
    const auto exit = [&gate]
    {
        gate.Pass();
        pthread_exit(nullptr);
    };
    Ok(pool.Post(exit));
    gate.WaitForAThread();
    Ok(pool.Post(Traced(counts)));
    gate.Open();
    Ok(pool.Wait(forever));  // the last one abandons what is left
    EXPECT_EQ(counts.destroyed, 2);
    EXPECT_EQ(pool.Post([] {}), NX_ERR_THR_NOT_RUNNING);
    ExpectNothingLost(pool.GetCounts());
}

TEST(nxFunctorThreadPool, AForkedChildHasNoneOfIt)
{
    Traced::Counts counts;
    nxFunctorQueue queue(1);
    Ok(queue.Post(Traced(counts)));
    auto pool = std::make_unique<nxFunctorThreadPool>();
    Ok(pool->Start(2, {.capacity = 1}));
    const auto live = [&]
    {
        const auto nothing = [] {};
        for (const nxErrorEnum& error : {queue.Post(nothing), queue.RunOne(forever), queue.WaitIdle(forever),
                                         pool->Post(nothing), pool->Wait(forever), pool->Start(1)})
            EXPECT_EQ(error, NX_ERR_THR_NOT_RUNNING);
        EXPECT_EQ(queue.Stop(StopMode::Abandon), 0U);
        pool.reset();
        EXPECT_EQ(counts.destroyed, 0);
        nxFunctorQueue own(1);
        Ok(own.Post(nothing));
        Ok(own.RunOne(0));
    };
    {
        const nxBusyThread producer([&pool] { static_cast<void>(pool->TimedPost([] {}, 0.001)); });
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(nxInChild(live));
    }
    // The child of a functor that forks goes on.
    pid_t child = 0;
    int status = -1;
    Ok(queue.RunOne(0));
    Ok(queue.Post([&child] { child = fork(); }));
    Ok(queue.RunOne(0));
    if (child == 0)
        _exit(queue.RunOne(0) == NX_ERR_THR_NOT_RUNNING ? 0 : 1);
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
}
