// SPDX-License-Identifier: Apache-2.0
// Signals that become calls on a thread: none is lost from the first block to the end, and none has its own effect meanwhile.

#include "core/thread/nxSignalThread.h"

#include "core/thread/nxThread.h"
#include "tests/support/nxSystemTest.h"

namespace
{
bool IsBlocked(int signal)
{
    sigset_t mask;
    pthread_sigmask(SIG_SETMASK, nullptr, &mask);
    return sigismember(&mask, signal) == 1;
}

// The signal that ends a process with this body.
template <class Body>
int SignalThatEnds(Body body)
{
    const pid_t process = fork();
    if (process == 0)
    {
        alarm(60);
        body();
        _exit(1);
    }
    int status = 0;
    waitpid(process, &status, 0);
    return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
}
}  // namespace

TEST(nxSignalThread, LosesNoSignalFromTheBlockToTheEnd)
{
    const int queued = SIGRTMIN + 2;  // unlike SIGTERM it counts as often as it is sent
    const sigval none{};
    for (int round = 0; round < 100; ++round)
    {
        std::atomic<int> calls{0};
        {
            const nxBlockedSignals blocked({queued, SIGHUP});
            sigqueue(getpid(), queued, none);
            nxSignalThread signals(blocked);
            signals.SetHandler(queued, [&] { ++calls; });
            ASSERT_TRUE(signals.Start().IsOK());
            EXPECT_EQ(signals.Start(), NX_ERR_THR_ALREADY_STARTED);
            for (int i = 0; i < round; ++i)
                sigqueue(getpid(), queued, none);
            signals.Stop();
            EXPECT_EQ(calls, round + 1);
            sigqueue(getpid(), queued, none);
            ASSERT_TRUE(signals.Start().IsOK()) << "once more";
        }
        EXPECT_EQ(calls, round + 2);
        EXPECT_FALSE(IsBlocked(queued) || IsBlocked(SIGHUP));
    }
}

TEST(nxSignalThread, GoesOnAfterAnException)
{
    nxCapturingLogDevice log;
    std::atomic<int> calls{0};
    const nxBlockedSignals blocked({SIGUSR1, SIGUSR2});
    nxSignalThread signals(blocked);
    signals.SetHandler(SIGUSR1, [] { throw std::runtime_error("no file"); });
    signals.SetHandler(SIGUSR2, [&] { ++calls; });
    kill(getpid(), SIGUSR1);
    kill(getpid(), SIGUSR2);
    ASSERT_TRUE(signals.Start().IsOK());
    signals.Stop();
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(TakeReports(log, "core/trunk/nxSignalThread", false),
              std::vector<std::string>{"FTL The handler of signal " + std::to_string(SIGUSR1) +
                                       " ended with an exception: no file"});
}

TEST(nxSignalThread, RefusesWhatNoThreadCanWaitFor)
{
    for (const int signal : {0, -1, 32, 65, SIGKILL, SIGSTOP, SIGSEGV, SIGFPE})
    {
        const nxBlockedSignals blocked({SIGUSR1, signal});
        EXPECT_EQ(blocked.GetError(), NX_ERR_INVALID_PARAMETER) << signal;
        EXPECT_TRUE(blocked.Contains(SIGUSR1) && IsBlocked(SIGUSR1)) << signal;
    }
    const nxBlockedSignals blocked({SIGUSR1});
    nxSignalThread withoutHandler(blocked), withEmptyOne(blocked), withForeignOne(blocked);
    withEmptyOne.SetHandler(SIGUSR1, nullptr);
    withForeignOne.SetHandler(SIGUSR1, [] {});
    withForeignOne.SetHandler(SIGUSR2, [] {});
    for (nxSignalThread* const signals : {&withoutHandler, &withEmptyOne, &withForeignOne})
        EXPECT_EQ(signals->Start(), NX_ERR_INVALID_PARAMETER);
}

TEST(nxSignalThread, TellsWhichThreadsStillAcceptTheSignals)
{
    nxCapturingLogDevice log;
    std::atomic<bool> isOver{false};
    std::atomic<int> number{0};
    std::thread early(
        [&]
        {
            number = std::stoi(nxThread::GetThreadIDAsString());
            EXPECT_TRUE(nxEventually([&] { return isOver.load(); }));
        });
    EXPECT_TRUE(nxEventually([&] { return number != 0; }));
    const nxBlockedSignals blocked({SIGUSR1});
    EXPECT_EQ(blocked.FindOpenThreads(), std::vector<unsigned>{static_cast<unsigned>(number.load())});
    nxSignalThread signals(blocked);
    signals.SetHandler(SIGUSR1, [] {});
    EXPECT_TRUE(signals.Start().IsOK());
    isOver = true;
    early.join();
    EXPECT_EQ(TakeReports(log, "core/trunk/nxSignalThread", false).size(), 1U);
}

TEST(nxSignalThread, LeavesIgnoredSignalsAlone)
{
    const auto before = signal(SIGHUP, SIG_IGN);
    {
        const nxBlockedSignals blocked;
        EXPECT_TRUE(blocked.IsIgnored(SIGHUP) && !blocked.Contains(SIGHUP) && blocked.Contains(SIGTERM));
        nxSignalThread signals(blocked);
        signals.SetHandler(SIGHUP, [] { ADD_FAILURE(); });
        EXPECT_TRUE(signals.Start().IsOK());
        kill(getpid(), SIGHUP);
    }
    signal(SIGHUP, before);
}

TEST(nxSignalThread, TheSecondSignalEndsTheProcessAtOnceIfWanted)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    for (const auto& [first, second] :
         {std::pair(SIGTERM, SIGTERM), std::pair(SIGTERM, SIGINT), std::pair(SIGINT, SIGTERM)})
    {
        const auto body = [first = first, second = second]
        {
            const nxBlockedSignals blocked;
            nxSignalThread signals(blocked);
            const auto drain = [second]
            {
                kill(getpid(), second);
                pause();  // never ends by itself
            };
            signals.SetHandler(SIGTERM, drain);
            signals.SetHandler(SIGINT, drain);
            signals.EndAtSecondSignal();
            static_cast<void>(signals.Start());
            kill(getpid(), first);
            pause();
        };
        EXPECT_EQ(SignalThatEnds(body), second);
    }
}

TEST(nxSignalThread, AForkedChildHasNoneAndGetsItsSignalsBack)
{
    const auto blocked = std::make_unique<nxBlockedSignals>();
    auto signals = std::make_unique<nxSignalThread>(*blocked);
    signals->SetHandler(SIGTERM, [] { ADD_FAILURE(); });
    ASSERT_TRUE(signals->Start().IsOK());
    EXPECT_EQ(SignalThatEnds(
                  [&]
                  {
                      signals.reset();
                      kill(getpid(), SIGTERM);
                      blocked->RestoreInChild();
                  }),
              SIGTERM);
}
