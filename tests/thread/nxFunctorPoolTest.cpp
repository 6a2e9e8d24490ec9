// SPDX-License-Identifier: Apache-2.0
// Functor queues, threads and pools: each functor runs once or is destroyed once, whatever happens to the threads, and the counts
// say which.

#include "core/thread/nxFunctorThread.h"
#include "core/thread/nxThread.h"
#include "tests/support/nxSystemTest.h"

namespace
{
using Priority = nxFunctorQueue::Priority;
using StopMode = nxFunctorQueue::StopMode;

constexpr double forever = 60;  // seconds; a test that waits for them has failed

// Counts its calls and how often it was destroyed without one.
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

// Larger than a place in the queue.
struct Large
{
    std::array<char, 100> bytes{};
    Traced traced;
    void operator()() { traced(); }
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
    explicit HeldThread(std::size_t capacity)
    {
        EXPECT_TRUE(thread.Start({.capacity = capacity}).IsOK());
        EXPECT_TRUE(thread.Post([this] { gate.Pass(); }).IsOK());
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
    EXPECT_TRUE(queue.Post(add('c'), Priority::Low).IsOK());
    EXPECT_TRUE(queue.Post(add('b')).IsOK());
    EXPECT_TRUE(queue.Post(add('a'), Priority::High).IsOK());
    EXPECT_TRUE(queue.Post(add('d'), Priority::Low).IsOK());
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
    EXPECT_TRUE(queue.WaitIdle(0).IsOK());
    EXPECT_EQ(order, "abcd");
    const nxFunctorQueue::Counts counts = queue.GetCounts();
    EXPECT_EQ(counts.mostQueued, 4U);
    EXPECT_EQ(counts.refused, 5U);
    ExpectNothingLost(counts);
    EXPECT_THROW(nxFunctorQueue(std::numeric_limits<std::size_t>::max()), std::bad_alloc);
}

TEST(nxFunctorQueue, DestroysOnceWhatDoesNotRun)
{
    Traced::Counts counts;
    {
        nxFunctorQueue queue(0);  // one place
        EXPECT_TRUE(queue.Post(Traced(counts)).IsOK());
        EXPECT_EQ(queue.TimedPost(Traced(counts), 0), NX_ERR_THR_TIMEDOUT);
        EXPECT_TRUE(queue.RunOne(0).IsOK());
        EXPECT_TRUE(queue.Post(Large{{}, Traced(counts)}).IsOK());
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
    EXPECT_TRUE(queue
                    .Post(
                        [&]
                        {
                            errors = {queue.Post([] {}), queue.Post([] {}), queue.TimedPost([] {}, 0),
                                      queue.RunOne(forever), queue.WaitIdle(forever)};
                        })
                    .IsOK());
    EXPECT_TRUE(queue.RunOne(0).IsOK());
    const nxErrorEnum deadlock(NX_ERR_THR_DEADLOCK);
    EXPECT_EQ(errors, (std::vector{nxErrorEnum(), deadlock, deadlock, deadlock, deadlock}));
}

TEST(nxFunctorQueue, AFunctorMayDestroyItsQueue)
{
    Traced::Counts counts;
    auto* const queue = new nxFunctorQueue(4);
    EXPECT_TRUE(queue->Post([queue] { delete queue; }).IsOK());
    EXPECT_TRUE(queue->Post(Traced(counts)).IsOK());
    EXPECT_TRUE(queue->RunOne(0).IsOK());
    EXPECT_EQ(counts.destroyed, 1);

    // Of a pool, the thread of the functor goes on alone.
    for (const unsigned threads : {1U, 3U})
    {
        std::atomic<bool> hasEnded{false};
        auto pool = std::make_shared<nxFunctorThreadPool>();
        nxFunctorThreadPool& itself = *pool;
        ASSERT_TRUE(pool->Start(threads).IsOK());
        nxGate gate;
        EXPECT_TRUE(itself
                        .Post(
                            [&gate, &hasEnded, pool = std::move(pool)]() mutable
                            {
                                gate.Pass();
                                pool.reset();
                                hasEnded = true;
                            })
                        .IsOK());
        gate.Open();
        EXPECT_TRUE(nxEventually([&] { return hasEnded.load(); }));
    }
}

TEST(nxFunctorQueue, ReportsExceptionsAndGoesOn)
{
    nxCapturingLogDevice log;
    nxFunctorThread thread;
    ASSERT_TRUE(thread.Start().IsOK());
    EXPECT_TRUE(thread.Post([] { throw std::runtime_error("no price"); }).IsOK());
    EXPECT_TRUE(thread.Post([] { throw 7; }).IsOK());
    EXPECT_TRUE(thread.Post(ThrowsAtItsEnd()).IsOK());
    EXPECT_TRUE(thread.Post([] {}).IsOK());
    EXPECT_TRUE(thread.WaitIdle(forever).IsOK());
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
    EXPECT_EQ(thread.Stop(StopMode::Abandon), 0U);
    EXPECT_EQ(thread.Start({.capacity = 0}), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(thread.Start({.capacity = std::numeric_limits<std::size_t>::max()}), NX_ERR_INSUFFICIENT_MEMORY);
    for (const int processor : {-1, 1023, 5000})
        EXPECT_EQ(thread.Start({.processors = {processor}}), NX_ERR_THR_FAILED_TO_SET_SCHEDULER_PARAMATERS);
    ASSERT_TRUE(thread.Start({.name = "a name of more than fifteen"}).IsOK());
    EXPECT_EQ(thread.Start(), NX_ERR_THR_ALREADY_STARTED);
    nxErrorEnum inside;
    EXPECT_TRUE(thread
                    .Post(
                        [&]
                        {
                            char name[16];
                            sigset_t blocked;
                            pthread_getname_np(pthread_self(), name, sizeof name);
                            pthread_sigmask(SIG_SETMASK, nullptr, &blocked);
                            EXPECT_STREQ(name, "a name of more ");
                            EXPECT_TRUE(sigismember(&blocked, SIGTERM) == 1 && sigismember(&blocked, SIGSEGV) == 0);
                            inside = thread.Wait(forever);
                        })
                    .IsOK());
    EXPECT_EQ(thread.Wait(0.001), NX_ERR_THR_TIMEDOUT);
    thread.Stop(StopMode::Drain);
    EXPECT_TRUE(thread.Wait(forever).IsOK());
    EXPECT_EQ(inside, NX_ERR_THR_DEADLOCK);
    EXPECT_TRUE(thread.Wait(0).IsOK());
    EXPECT_EQ(thread.Post(nothing), NX_ERR_THR_NOT_RUNNING);
    EXPECT_EQ(thread.Start(), NX_ERR_THR_ALREADY_STARTED);
}

TEST(nxFunctorThread, AllThreadsStartOrNone)
{
    nxFunctorThreadPool pool;
    EXPECT_EQ(pool.Start(0), NX_ERR_INVALID_PARAMETER);
    for (const unsigned started : {0U, 1U})
    {
        const nxSystemCallFault fault("pthread_create", EAGAIN, {.skip = started});
        EXPECT_EQ(pool.Start(2), NX_ERR_THR_RESOURCE);
    }
    EXPECT_TRUE(pool.Start(2).IsOK());
}

// The functors that the thread has taken with the first one wait as if it had not.
TEST(nxFunctorThread, ABatchIsNotSeen)
{
    std::string order;
    Traced::Counts counts;
    HeldThread held(8);
    nxGate inBatch, urgent;
    EXPECT_TRUE(held.thread.Post([&inBatch] { inBatch.Pass(); }).IsOK());
    EXPECT_TRUE(held.thread.Post([&order] { order += '2'; }).IsOK());
    EXPECT_TRUE(held.thread.Post([&order] { order += '3'; }).IsOK());
    EXPECT_TRUE(held.thread.Post(Traced(counts)).IsOK());
    held.gate.Open();
    inBatch.WaitForAThread();
    EXPECT_EQ(held.thread.GetCounts().queued, 3U);
    EXPECT_TRUE(held.thread.Post([&order] { order += '1'; }, Priority::High).IsOK());
    EXPECT_TRUE(held.thread.Post([&urgent] { urgent.Pass(); }, Priority::High).IsOK());
    inBatch.Open();
    urgent.WaitForAThread();
    EXPECT_EQ(order, "1");
    EXPECT_EQ(held.thread.Stop(StopMode::Abandon), 3U);
    EXPECT_EQ(counts.destroyed, 1);
    urgent.Open();
    EXPECT_TRUE(held.thread.Wait(forever).IsOK());
    EXPECT_EQ(order, "1");
    ExpectNothingLost(held.thread.GetCounts());
}

// With a full queue, long functors and a functor that waits for the producer, room that is free is found.
TEST(nxFunctorThread, ThoseThatWaitForRoomAreNotHeldUpByALongFunctor)
{
    HeldThread held(8);
    nxGate longOne;
    EXPECT_TRUE(held.thread.Post([&longOne] { longOne.Pass(); }).IsOK());
    for (int i = 1; i < 8; ++i)
        EXPECT_TRUE(held.thread.Post([] {}).IsOK());
    nxInThreads(2,
                [&](int number)
                {
                    if (number == 0)
                    {
                        EXPECT_TRUE(held.thread.Post([] {}).IsOK());
                        longOne.Open();  // ends the functor
                    }
                    else
                        held.gate.Open();
                });
    EXPECT_TRUE(held.thread.WaitIdle(forever).IsOK());
}

TEST(nxFunctorThreadPool, RunsEachFunctorOnceAndEachProducersInOrder)
{
    const int each = nxUnderThreadSanitizer || nxUnderAddressSanitizer ? 5'000 : 250'000;
    constexpr int producers = 4;
    for (const auto& [threads, capacity] : {std::pair{1U, 1U}, {1U, 3U}, {1U, 1000U}, {3U, 1U}, {3U, 1000U}})
    {
        nxFunctorThreadPool pool;
        ASSERT_TRUE(pool.Start(threads, {.capacity = capacity}).IsOK());
        const int count = capacity < 10 ? 2'000 : each;
        std::array<std::vector<std::atomic<char>>, producers> runs;
        for (auto& row : runs)
            row = std::vector<std::atomic<char>>(static_cast<std::size_t>(count));
        std::array<int, producers> last{};
        std::atomic<int> disorder{0};
        nxInThreads(producers,
                    [&](int producer)
                    {
                        const auto row = static_cast<std::size_t>(producer);
                        for (int i = 0; i < count; ++i)
                        {
                            const auto run = [&, row, i]
                            {
                                ++runs[row][static_cast<std::size_t>(i)];
                                if (threads == 1)
                                    disorder += std::exchange(last[row], i) > i;
                            };
                            // Every other one is not plain bytes.
                            const nxErrorEnum error = i % 2 == 0
                                                          ? pool.Post(run)
                                                          : pool.Post(
                                                                [&, row, i, kept = std::make_unique<int>(i)]
                                                                {
                                                                    ++runs[row][static_cast<std::size_t>(i)];
                                                                    if (threads == 1)
                                                                        disorder += std::exchange(last[row], *kept) > i;
                                                                });
                            EXPECT_TRUE(error.IsOK());
                        }
                    });
        EXPECT_TRUE(pool.WaitIdle(forever).IsOK());
        for (const auto& row : runs)
            EXPECT_TRUE(std::all_of(row.begin(), row.end(), [](const auto& times) { return times == 1; }));
        EXPECT_EQ(disorder, 0);
        const nxFunctorQueue::Counts counts = pool.GetCounts();
        EXPECT_EQ(counts.run, static_cast<unsigned long long>(producers * count));
        EXPECT_LE(counts.mostQueued, capacity);
        ExpectNothingLost(counts);
    }
}

TEST(nxFunctorThreadPool, AStopInTheMiddleLosesNothingFromTheCounts)
{
    for (int round = 0; round < 60; ++round)
    {
        Traced::Counts counts;
        int accepted = 0, tried = 0;
        {
            nxFunctorThreadPool pool;
            ASSERT_TRUE(pool.Start(round % 3 == 0 ? 2 : 1, {.capacity = round % 2 == 0 ? 2U : 64U}).IsOK());
            std::atomic<int> acceptedByAll{0}, triedByAll{0}, callsAfter{0};
            nxInThreads(3,
                        [&](int number)
                        {
                            if (number == 2)
                            {
                                nxEventually([&] { return triedByAll > 10 * round; });
                                pool.Stop(round % 4 < 2 ? StopMode::Abandon : StopMode::Drain);
                                return;
                            }
                            nxErrorEnum error;
                            while (error != NX_ERR_THR_NOT_RUNNING)
                            {
                                const Priority priority = triedByAll % 5 == 0 ? Priority::High : Priority::Normal;
                                error = pool.TimedPost(Traced(counts), number == 0 ? forever : 0, priority);
                                ++triedByAll;
                                acceptedByAll += error.IsOK();
                            }
                        });
            EXPECT_TRUE(pool.Wait(forever).IsOK());
            ExpectNothingLost(pool.GetCounts());
            EXPECT_EQ(pool.GetCounts().posted, static_cast<unsigned long long>(acceptedByAll));
            EXPECT_EQ(pool.GetCounts().run, static_cast<unsigned long long>(counts.calls));
            accepted = acceptedByAll;
            tried = triedByAll;
        }
        EXPECT_EQ(counts.destroyed, tried);
        EXPECT_LE(counts.calls, accepted);
    }
}

TEST(nxFunctorThreadPool, AThreadThatIsUnwoundLeavesTheRestToTheOthers)
{
    Traced::Counts counts;
    nxFunctorThreadPool pool;
    ASSERT_TRUE(pool.Start(2).IsOK());
    EXPECT_TRUE(pool.Post([traced = std::make_unique<Traced>(counts)] { pthread_exit(nullptr); }).IsOK());
    EXPECT_TRUE(pool.WaitIdle(forever).IsOK());
    EXPECT_EQ(counts.destroyed, 1);
    EXPECT_TRUE(pool.Post([] {}).IsOK());
    EXPECT_TRUE(pool.WaitIdle(forever).IsOK());
    nxGate gate;
    EXPECT_TRUE(pool.Post(
                        [&gate]
                        {
                            gate.Pass();
                            pthread_exit(nullptr);
                        })
                    .IsOK());
    gate.WaitForAThread();
    EXPECT_TRUE(pool.Post(Traced(counts)).IsOK());
    gate.Open();
    EXPECT_TRUE(pool.Wait(forever).IsOK()) << "the last one abandons what is left";
    EXPECT_EQ(counts.destroyed, 2);
    EXPECT_EQ(pool.Post([] {}), NX_ERR_THR_NOT_RUNNING);
    ExpectNothingLost(pool.GetCounts());
}

TEST(nxFunctorThreadPool, AForkedChildHasNoneOfIt)
{
    Traced::Counts counts;
    nxFunctorQueue queue(1);
    EXPECT_TRUE(queue.Post(Traced(counts)).IsOK());
    auto pool = std::make_unique<nxFunctorThreadPool>();
    ASSERT_TRUE(pool->Start(2, {.capacity = 1}).IsOK());
    {
        const nxBusyThread producer([&pool] { static_cast<void>(pool->TimedPost([] {}, 0.001)); });
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(nxInChild(
                [&]
                {
                    EXPECT_EQ(queue.Post([] {}), NX_ERR_THR_NOT_RUNNING);
                    EXPECT_EQ(queue.RunOne(forever), NX_ERR_THR_NOT_RUNNING);
                    EXPECT_EQ(queue.Stop(StopMode::Abandon), 0U);
                    EXPECT_EQ(queue.WaitIdle(forever), NX_ERR_THR_NOT_RUNNING);
                    EXPECT_EQ(queue.GetCounts().posted, 0U);
                    EXPECT_EQ(pool->Post([] {}), NX_ERR_THR_NOT_RUNNING);
                    EXPECT_EQ(pool->Wait(forever), NX_ERR_THR_NOT_RUNNING);
                    EXPECT_EQ(pool->Start(1), NX_ERR_THR_NOT_RUNNING);
                    pool.reset();
                    EXPECT_EQ(counts.destroyed, 0);
                    nxFunctorQueue own(1);
                    EXPECT_TRUE(own.Post([] {}).IsOK() && own.RunOne(0).IsOK());
                }));
    }
    // A functor may fork, and its child may go on.
    pid_t child = 0;
    EXPECT_TRUE(queue.RunOne(0).IsOK());
    EXPECT_TRUE(queue.Post([&child] { child = fork(); }).IsOK());
    const bool isRun = queue.RunOne(0).IsOK();
    if (child == 0)
        _exit(queue.RunOne(0) == NX_ERR_THR_NOT_RUNNING ? 0 : 1);
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_TRUE(isRun && status == 0);
}
