// SPDX-License-Identifier: Apache-2.0
// Pools whose process or threads end in the middle of the work: by exit, by a signal, by a fork, by a cancellation.

#include <sched.h>

#include <cstring>

#include "core/thread/nxFunctorThread.h"
#include "tests/support/nxSystemTest.h"

namespace
{
constexpr double forever = 60;  // seconds; a test that waits for them has failed

void Posted(const nxErrorEnum& error) { EXPECT_TRUE(error.IsOK()) << error; }

// Posts itself again until the pool is stopped, and leaves something to report each time.
struct Endless
{
    void operator()() const
    {
        static_cast<void>(pool.TimedPost(*this, 0));
        throw std::runtime_error("again");
    }

    nxFunctorThreadPool& pool;
    std::shared_ptr<int> token;
};

// Ends the process with an error when functors are left after the pool.
struct Witness
{
    ~Witness()
    {
        if (owners != 0 && token.use_count() != owners)
            _exit(3);
    }

    std::shared_ptr<int> token = std::make_shared<int>();
    long owners = 0;
};

[[noreturn]] void Exit() { std::exit(testing::Test::HasFailure() ? 1 : 0); }

// Ends the process by exit() while all threads of a pool are busy.
void ExitInTheMiddle(bool isStatic, bool isInFunctor, unsigned threads)
{
    static Witness witness;
    static nxFunctorThreadPool staticPool;
    nxFunctorThreadPool localPool;
    nxFunctorThreadPool& pool = isStatic ? staticPool : localPool;
    Posted(pool.Start(threads, {.capacity = 16}));
    for (int i = 0; i < 8; ++i)
        Posted(pool.Post(Endless{pool, witness.token}));
    EXPECT_TRUE(nxEventually([&pool] { return pool.GetCounts().run > 100; }));
    if (isStatic)
        witness.owners = isInFunctor ? 3 : 1;  // its functor, and the one below that was copied
    if (!isInFunctor)
        Exit();
    nxGate gate;  // until no thread is inside an operation of the pool
    const auto exit = [&gate, token = witness.token]
    {
        gate.Pass();
        Exit();
    };
    Posted(pool.Post(exit));
    gate.Open();
    for (;;)
        pause();
}
}  // namespace

TEST(nxFunctorThreadPool, ExitEndsTheProcessWhileFunctorsRun)
{
    if (!nxInNewProcess())  // has no other threads, so that its children may start some
        return;
    std::deque<nxChildProcess> children;
    for (const bool isStatic : {false, true})
        for (const bool isInFunctor : {false, true})
            for (const unsigned threads : {1U, 2U})
                children.emplace_back([=] { ExitInTheMiddle(isStatic, isInFunctor, threads); });
    for (nxChildProcess& child : children)
        EXPECT_TRUE(child.Succeeds());
}

// Each functor writes its number to a file. What was counted as run before the end is there after it.
TEST(nxFunctorThreadPool, WhatHasRunIsThereAfterAKillOrAnAbort)
{
    if (!nxInNewProcess())
        return;
    const nxScratchDirectory scratch;
    const std::string path = scratch.GetPath() / "numbers";
    const auto work = [&path](unsigned threads, bool aborts, std::atomic<unsigned>& seen)
    {
        const rlimit none{0, 0};
        setrlimit(RLIMIT_CORE, &none);
        const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_APPEND, 0600);
        nxFunctorThreadPool pool;
        Posted(pool.Start(threads, {.capacity = 64}));
        for (int number = 0;; ++number)
        {
            const auto write = [file, number, aborts]
            {
                if (::write(file, &number, sizeof number) != sizeof number)
                    _exit(1);
                if (aborts && number == 5'000)
                    std::abort();
            };
            Posted(pool.Post(write));
            seen = static_cast<unsigned>(pool.GetCounts().run);
        }
    };
    for (const unsigned threads : {1U, 3U})
        for (const bool aborts : {false, true})
        {
            const nxSharedMemory<std::atomic<unsigned>> seen;
            nxChildProcess process([&] { work(threads, aborts, *seen); });
            if (aborts)
                EXPECT_FALSE(process.Succeeds());
            else
                EXPECT_TRUE(nxEventually([&seen] { return *seen > 3'000; }));
            process.Kill();
            const std::string bytes = nxReadFile(path);
            std::vector<int> numbers(bytes.size() / sizeof(int));
            std::memcpy(numbers.data(), bytes.data(), numbers.size() * sizeof(int));
            ASSERT_FALSE(numbers.empty());
            EXPECT_GE(numbers.size(), *seen);
            if (threads > 1)
                std::sort(numbers.begin(), numbers.end());
            EXPECT_TRUE(std::adjacent_find(numbers.begin(), numbers.end(), std::greater_equal<>()) == numbers.end());
            EXPECT_TRUE(!aborts || std::binary_search(numbers.begin(), numbers.end(), 5'000));
            EXPECT_TRUE(threads > 1 || numbers.back() + 1 == static_cast<int>(numbers.size()));
        }
}

TEST(nxFunctorThreadPool, AFunctorAndAnotherThreadForkWhileTheQueueIsFull)
{
    if (!nxInNewProcess())
        return;
    for (const unsigned threads : {1U, 2U})
    {
        std::atomic<int> ran{0};
        nxGate gate;
        nxFunctorThreadPool pool;
        Posted(pool.Start(threads, {.capacity = 1}));
        const auto isNoneOfIt = [&]
        {
            alarm(60);
            return pool.Post([] {}) == NX_ERR_THR_NOT_RUNNING && pool.WaitIdle(forever) == NX_ERR_THR_NOT_RUNNING &&
                   pool.Stop(nxFunctorQueue::StopMode::Abandon) == 0;
        };
        const auto forks = [&]
        {
            gate.Pass();
            const pid_t child = fork();
            if (child == 0)
            {
                const bool isRight = isNoneOfIt();
                // The one sanitizer cannot end a thread in a forked child, the other one misses the stacks of the other threads.
                if (!isRight || nxUnderThreadSanitizer || nxUnderAddressSanitizer)
                    _exit(isRight ? 0 : 1);
                return;  // the only thread of the child ends, and the child with it
            }
            int status = -1;
            waitpid(child, &status, 0);
            EXPECT_EQ(status, 0);
            ++ran;
        };
        for (unsigned i = 0; i < threads; ++i)
            Posted(pool.Post(forks));
        gate.WaitForAThread();
        Posted(pool.Post([&ran] { ++ran; }));
        nxJoinedThread waiting([&] { Posted(pool.Post([&ran] { ++ran; })); });
        EXPECT_TRUE(nxInChild([&] { EXPECT_TRUE(isNoneOfIt()); }));
        gate.Open();
        waiting.join();
        Posted(pool.WaitIdle(forever));
        EXPECT_EQ(ran, static_cast<int>(threads) + 2);
    }
}

TEST(nxFunctorThreadPool, AChildCannotStartAPoolThatAnotherThreadWasStarting)
{
    if (!nxInNewProcess())
        return;
    static nxStage stage;
    nxFunctorThreadPool pool;
    {
        const auto isHeldUp = []
        {
            stage.Reach(1);
            stage.WaitFor(2);
        };
        const nxJoinedThread starting(
            [&]
            {
                const nxSystemCallFault fault("pthread_create", EAGAIN, {.meanwhile = isHeldUp});
                EXPECT_EQ(pool.Start(1), NX_ERR_THR_RESOURCE);
            });
        stage.WaitFor(1);
        const auto inChild = [&pool]
        {
            EXPECT_EQ(pool.Start(1), NX_ERR_THR_NOT_RUNNING);
            EXPECT_EQ(pool.Post([] {}), NX_ERR_NOT_INITIALISED);
        };
        EXPECT_TRUE(nxInChild(inChild));
        stage.Reach(2);
    }
    EXPECT_TRUE(nxInChild([&pool] { Posted(pool.Start(1)); }));
    Posted(pool.Start(1));
}

TEST(nxFunctorThreadPool, ACancelledThreadLeavesTheRestToTheOthers)
{
    const auto token = std::make_shared<int>();
    {
        std::atomic<bool> isInside;
        std::atomic<pthread_t> thread;
        nxFunctorThreadPool pool;
        Posted(pool.Start(2));
        for (const bool isLast : {false, true})
        {
            const auto sleep = [&isInside, &thread, token]
            {
                thread = pthread_self();
                isInside = true;
                while (!nxUnderThreadSanitizer)
                    pause();
                for (;;)
                    pthread_testcancel();  // that sanitizer loses sight of locks when a system call is cancelled
            };
            isInside = false;
            Posted(pool.Post(sleep));
            EXPECT_TRUE(nxEventually([&isInside] { return isInside.load(); }));
            if (isLast)
                Posted(pool.Post([token] {}));
            pthread_cancel(thread);
        }
        Posted(pool.Wait(forever));
        EXPECT_EQ(pool.GetCounts().run, 2U);
        EXPECT_EQ(pool.GetCounts().abandoned, 1U);
    }
    EXPECT_EQ(token.use_count(), 1);
}

TEST(nxFunctorThread, ACancellationWaitsForAFunctorThatCanBeCancelled)
{
    nxCapturingLogDevice log;
    std::atomic<int> ran{0};
    nxFunctorThread thread;
    Posted(thread.Start());
    Posted(thread.Post([] { pthread_cancel(pthread_self()); }));
    Posted(thread.WaitIdle(forever));
    Posted(thread.Post([] { throw std::runtime_error("no price"); }));
    Posted(thread.Post([&ran, kept = std::make_shared<int>()] { ++ran; }));
    Posted(thread.WaitIdle(forever));
    EXPECT_EQ(ran, 1);
    Posted(thread.Post([] { pthread_testcancel(); }));
    Posted(thread.Wait(forever));
    EXPECT_EQ(thread.GetCounts().run, 4U);
    EXPECT_EQ(thread.GetCounts().threw, 1U);
}

TEST(nxFunctorThreadPool, RunsOnTheProcessorsThatItIsGiven)
{
    cpu_set_t allowed;
    ASSERT_EQ(sched_getaffinity(0, sizeof allowed, &allowed), 0);
    std::vector<int> processors;
    for (int processor = 0; processor < CPU_SETSIZE; ++processor)
        if (CPU_ISSET(processor, &allowed))
            processors.push_back(processor);
    for (const int processor : {processors.front(), processors.back()})
    {
        const auto expect = [processor](const std::vector<int>& given)
        {
            nxFunctorThreadPool pool;
            Posted(pool.Start(2, {.processors = given}));
            for (int i = 0; i < 20; ++i)
                Posted(pool.Post([processor] { EXPECT_EQ(sched_getcpu(), processor); }));
            Posted(pool.WaitIdle(forever));
        };
        expect({processor});
        expect({processor, 1023});  // which the machine does not have
        const auto pinned = [&]
        {
            cpu_set_t own;
            CPU_ZERO(&own);
            CPU_SET(processor, &own);
            EXPECT_EQ(sched_setaffinity(0, sizeof own, &own), 0);
            expect({});  // that of the thread that starts it
            expect({processor});
        };
        nxInThreads(1, pinned);
    }
}
