// nxWindowsMutex and nxWindowsSemaphore: names, life, owners, and everything that may be in the way.

#include <gtest/gtest.h>

#include <dirent.h>
#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <deque>
#include <functional>
#include <limits>
#include <string>
#include <thread>
#include <vector>

#include "core/thread/nxWindowsMutex.h"
#include "core/thread/nxWindowsSemaphore.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxPrivateMemory.h"
#include "tests/support/nxRecordedLog.h"
#include "tests/support/nxSystemCallFault.h"

namespace
{
// A name that no other test, run or process uses.
std::string Unique(const std::string& text) { return text + '/' + std::to_string(getpid()); }

// Takes what can be had without waiting.
unsigned Drain(nxWindowsSemaphore& semaphore)
{
    unsigned count = 0;
    while (!semaphore.IsNull() && semaphore.TimedWait(0).IsOK())
        ++count;
    return count;
}

std::size_t OpenDescriptors()
{
    std::size_t count = 0;
    DIR* const directory = opendir("/proc/self/fd");
    while (readdir(directory) != nullptr)
        ++count;
    closedir(directory);
    return count;
}

// The path of a directory's only entry.
std::string OnlyEntryOf(const char* path)
{
    std::string found;
    DIR* const directory = opendir(path);
    while (const dirent* const entry = readdir(directory))
    {
        if (entry->d_name[0] != '.')
            found = std::string(path) + '/' + entry->d_name;
    }
    closedir(directory);
    return found;
}

// Stages that processes wait for in each other.
using Stage = std::atomic<int>;

void WaitForStage(const Stage& stage, int value)
{
    while (stage < value)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}
}  // namespace

TEST(namedObjects, EveryNameIsItsOwnAndStandsForOneKind)
{
    const std::string longest(260 - Unique("").size(), 'x');
    const std::vector<std::string> names{"",
                                         "/",
                                         "..",
                                         "../..",
                                         "a",
                                         "A",
                                         "a/b",
                                         "a_b",
                                         std::string("a\0b", 3),
                                         std::string("a\0c", 3),
                                         "\xff",
                                         "%2F",
                                         "line\r\nbreak",
                                         longest};
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
    nxRecordedLog mutexLog("core/trunk/nxWindowsMutex");
    nxRecordedLog semaphoreLog("core/trunk/nxWindowsSemaphore");
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

    nxLogManager::GetInstance().WaitForWriteThreadToWriteQueueToDisk(nxDoubleValueWrapper(20.0));
    EXPECT_TRUE(mutexLog.WaitFor(0).empty()) << "constructors report nothing";
    EXPECT_TRUE(semaphoreLog.WaitFor(0).empty());
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
        std::thread poster(
            [&]
            {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                semaphore.Post();
            });
        EXPECT_TRUE(semaphore.TimedWait(seconds).IsOK()) << seconds;
        poster.join();
    }
}

TEST(namedObjects, EveryPostWakesAWaiter)
{
    constexpr int each = 3'000;
    nxWindowsSemaphore items(Unique("items"), 0, 2147483647);
    std::vector<std::thread> threads;
    for (int i = 0; i < 2; ++i)
    {
        threads.emplace_back(
            [&]
            {
                for (int n = 0; n < each; ++n)
                    items.Post();
            });
        threads.emplace_back(
            [&]
            {
                for (int n = 0; n < each; ++n)
                    items.Wait();
            });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(Drain(items), 0U);
}

TEST(namedObjects, AMutexBelongsToAThreadAndCounts)
{
    const std::string name = Unique("owner");
    nxWindowsMutex mutex(name);
    nxWindowsMutex same(name);
    std::atomic<bool> entered{false};
    mutex.Lock();
    [&]() NX_NO_THREAD_SAFETY_ANALYSIS { same.Lock(); }();
    std::thread other(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            nxWindowsMutex third(name);
            third.Lock();
            entered = true;  // and ends as the owner
        });
    mutex.Unlock();
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_FALSE(entered) << "locked twice, unlocked once";
    [&]() NX_NO_THREAD_SAFETY_ANALYSIS { same.Unlock(); }();
    other.join();
    EXPECT_TRUE(entered);
    mutex.Lock();
    mutex.Unlock();
}

TEST(namedObjects, OneDescriptorServesAllNames)
{
    nxWindowsMutex first(Unique("descriptor"));
    const std::size_t before = OpenDescriptors();
    for (int i = 0; i < 10'000; ++i)
        EXPECT_FALSE(nxWindowsMutex(Unique("descriptor")).IsNull());
    for (int i = 0; i < 300; ++i)
        EXPECT_FALSE(nxWindowsMutex(Unique("descriptor" + std::to_string(i))).IsNull());
    EXPECT_EQ(OpenDescriptors(), before);
}

TEST(namedObjects, ANameLivesAsLongAsAProcessThatHasItOpen)
{
    const std::string name = Unique("life");
    nxSharedMemory<Stage> stage;
    nxChildProcess creator(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 3, 5);
            semaphore.Wait();
            *stage = 1;
            pause();
        });
    WaitForStage(*stage, 1);
    nxChildProcess second(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 5, 5);
            EXPECT_EQ(Drain(semaphore), 2U) << "opened, not made";
            semaphore.Post();
            *stage = 2;
            pause();
        });
    WaitForStage(*stage, 2);
    creator.Kill();
    nxChildProcess third(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 5, 5);
            EXPECT_EQ(Drain(semaphore), 1U) << "the second still has it open";
        });
    EXPECT_TRUE(third.Succeeds());
    second.Kill();
    nxChildProcess afresh(
        [&] { EXPECT_FALSE(nxWindowsMutex(name).IsNull()) << "nobody has it open: it may become another kind"; });
    EXPECT_TRUE(afresh.Succeeds());
    nxChildProcess again(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 4, 5);
            EXPECT_EQ(Drain(semaphore), 4U);
        });
    EXPECT_TRUE(again.Succeeds());
}

TEST(namedObjects, AForkedChildSharesWhatIsOpenAndOwnsNothing)
{
    const std::string name = Unique("fork");
    nxSharedMemory<Stage> stage;
    nxWindowsMutex mutex(name);
    mutex.Lock();
    nxChildProcess child(
        [&]() NX_NO_THREAD_SAFETY_ANALYSIS
        {
            mutex.Unlock();  // a stranger's
            *stage = 1;
            mutex.Lock();
            *stage = 2;  // ends as the owner
        });
    WaitForStage(*stage, 1);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(*stage, 1) << "the parent still holds it";
    mutex.Unlock();
    EXPECT_TRUE(child.Succeeds());
    EXPECT_EQ(*stage, 2);
    mutex.Lock();
    mutex.Unlock();
}

TEST(namedObjects, AForkedChildKeepsNamesAliveAndItsOwnNamesDieWithIt)
{
    const std::string inherited = Unique("inherited");
    const std::string own = Unique("own");
    nxSharedMemory<Stage> stage;
    nxChildProcess parent(
        [&]
        {
            nxWindowsSemaphore semaphore(inherited, 1, 1);
            semaphore.Wait();
            if (fork() == 0)
            {
                alarm(60);
                nxWindowsSemaphore childs(own, 1, 1);
                childs.Wait();
                *stage = 1;
                WaitForStage(*stage, 2);  // by now the parent has gone
                nxWindowsSemaphore known(inherited, 1, 1);
                EXPECT_EQ(Drain(known), 0U);
                *stage = 3;
                WaitForStage(*stage, 4);
                _exit(0);
            }
            WaitForStage(*stage, 1);
        });
    EXPECT_TRUE(parent.Succeeds());
    *stage = 2;
    WaitForStage(*stage, 3);
    nxChildProcess whileChildLives(
        [&]
        {
            nxWindowsSemaphore semaphore(inherited, 1, 1);
            EXPECT_EQ(Drain(semaphore), 0U);
        });
    EXPECT_TRUE(whileChildLives.Succeeds());
    *stage = 4;

    nxSharedMemory<Stage> second;
    nxChildProcess survivor(
        [&]
        {
            nxWindowsMutex mutex(inherited + "2");
            nxChildProcess child([&] { nxWindowsSemaphore(own + "2", 1, 1).Wait(); });
            EXPECT_TRUE(child.Succeeds());
            *second = 1;
            pause();
        });
    WaitForStage(*second, 1);
    nxWindowsSemaphore afresh(own + "2", 1, 1);
    EXPECT_EQ(Drain(afresh), 1U) << "its only user has ended, although the user's parent lives";
}

TEST(namedObjects, AProcessThatClosesAllDescriptorsClaimsItsNamesAgain)
{
    // Between the closing and the claim the names are anybody's, so nobody else may be around.
    if (!nxInNewProcess())
        return;
    if (!nxPrivateMemory::Mount())
        GTEST_SKIP() << "no private /dev/shm here";
    const std::string name = Unique("closed");
    nxSharedMemory<Stage> stage;
    nxChildProcess daemon(
        [&]
        {
            nxWindowsSemaphore semaphore(name, 1, 1);
            semaphore.Wait();
            for (int descriptor = 3; descriptor < 1024; ++descriptor)
                close(descriptor);
            const int another = open("/dev/zero", O_RDWR);  // probably under the old number
            EXPECT_FALSE(nxWindowsMutex(name + "2").IsNull());
            EXPECT_NE(fcntl(another, F_GETFD), -1) << "a descriptor that is not the table's is left alone";
            *stage = 1;
            pause();
        });
    WaitForStage(*stage, 1);
    nxWindowsSemaphore semaphore(name, 1, 1);
    EXPECT_EQ(Drain(semaphore), 0U) << "still open in the other process";
}

TEST(namedObjects, WhatTheSystemRefusesLeavesANullObjectAndNothingElse)
{
    if (!nxInNewProcess())
        return;
    if (!nxPrivateMemory::Mount())
        GTEST_SKIP() << "no private /dev/shm here";
    // In the order of their use: what has succeeded once is not asked for again.
    for (const char* const function : {"mkdir", "open", "openat", "fstat", "fcntl", "posix_fallocate", "mmap"})
    {
        SCOPED_TRACE(function);
        const nxSystemCallFault fault(function, ENOSPC, {.times = 2});
        EXPECT_TRUE(nxWindowsMutex(function).IsNull());
        EXPECT_GE(fault.GetHits(), 1U);
    }
    for (const char* const function :
         {"pthread_mutexattr_init", "pthread_mutexattr_settype", "pthread_mutexattr_setpshared",
          "pthread_mutexattr_setrobust", "pthread_mutex_init"})
    {
        SCOPED_TRACE(function);
        const nxSystemCallFault fault(function, ENOMEM);
        EXPECT_TRUE(nxWindowsMutex("primitive").IsNull());
        EXPECT_EQ(fault.GetHits(), 1U);
    }
    for (unsigned skip = 0; skip < 3; ++skip)
    {
        const nxSystemCallFault fault("fcntl", ENOLCK, {.skip = skip});
        EXPECT_TRUE(nxWindowsMutex("lock").IsNull() || skip == 2) << "the last call is the unlocking";
        EXPECT_EQ(fault.GetHits(), 1U);
    }
    std::size_t made = 0;
    const nxSystemCallFault full("posix_fallocate", ENOSPC, {.times = 1000});
    while (made < 1000 && !nxWindowsSemaphore(std::to_string(made), 1, 1).IsNull())
        ++made;
    EXPECT_GE(made, 100U);
    EXPECT_LT(made, 1000U);
    EXPECT_FALSE(nxWindowsSemaphore("0", 1, 1).IsNull()) << "what is there stays usable";
}

TEST(namedObjects, WhatANeighbourHasPlantedIsNotTouched)
{
    if (!nxInNewProcess())
        return;
    if (!nxPrivateMemory::Mount())
        GTEST_SKIP() << "no private /dev/shm here";
    std::string directory;
    std::string file;
    {
        nxChildProcess maker([] { EXPECT_FALSE(nxWindowsMutex("first").IsNull()); });
        ASSERT_TRUE(maker.Succeeds());
        directory = OnlyEntryOf("/dev/shm");
        file = OnlyEntryOf(directory.c_str());
    }
    const std::string target = "/dev/shm/target";
    const auto makeDirectory = [&](mode_t mode)
    {
        mkdir(directory.c_str(), mode);
        chmod(directory.c_str(), mode);
    };
    const auto write = [&](const std::string& path, const std::string& contents, mode_t mode)
    {
        const int descriptor = open(path.c_str(), O_WRONLY | O_CREAT, mode);
        EXPECT_EQ(::write(descriptor, contents.data(), contents.size()), static_cast<ssize_t>(contents.size()));
        fchmod(descriptor, mode);
        close(descriptor);
    };
    const std::string intact = "not yours";
    const struct
    {
        const char* what;
        std::function<void()> plant;
    } rows[] = {
        {"a directory that others can enter", [&] { makeDirectory(0755); }},
        {"a file for the directory", [&] { write(directory, intact, 0600); }},
        {"a link for the directory",
         [&]
         {
             mkdir("/dev/shm/other", 0700);
             EXPECT_EQ(symlink("/dev/shm/other", directory.c_str()), 0);
         }},
        {"another user's directory",
         [&]
         {
             makeDirectory(0700);
             if (chown(directory.c_str(), 12345, 12345) != 0)
                 chmod(directory.c_str(), 0777);
         }},
        {"a link for the file",
         [&]
         {
             makeDirectory(0700);
             EXPECT_EQ(symlink(target.c_str(), file.c_str()), 0);
         }},
        {"a second name of the file",
         [&]
         {
             makeDirectory(0700);
             EXPECT_EQ(link(target.c_str(), file.c_str()), 0);
         }},
        {"a file that others can write", [&] { makeDirectory(0700), write(file, "", 0666); }},
        {"a directory for the file", [&] { makeDirectory(0700), mkdir(file.c_str(), 0700); }},
        {"a pipe for the file", [&] { makeDirectory(0700), mkfifo(file.c_str(), 0600); }},
        {"something else in the file", [&] { makeDirectory(0700), write(file, intact, 0600); }},
        {"a file that is far too large",
         [&]
         {
             makeDirectory(0700);
             write(file, "", 0600);
             EXPECT_EQ(truncate(file.c_str(), 1LL << 40), 0);
         }},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.what);
        ASSERT_TRUE(nxPrivateMemory::Mount());
        write(target, intact, 0600);
        row.plant();
        EXPECT_TRUE(nxWindowsMutex("mine").IsNull());
        struct stat status = {};
        EXPECT_EQ(stat(target.c_str(), &status), 0);
        EXPECT_EQ(status.st_size, static_cast<off_t>(intact.size()));
    }
    ASSERT_TRUE(nxPrivateMemory::Mount());
    EXPECT_FALSE(nxWindowsMutex("mine").IsNull()) << "and once all that has gone";
}

TEST(namedObjects, WithoutRoomOrSharedMemory)
{
    if (!nxInNewProcess())
        return;
    if (!nxPrivateMemory::Mount("size=16k"))
        GTEST_SKIP() << "no private /dev/shm here";
    EXPECT_TRUE(nxWindowsMutex("full").IsNull()) << "refused, instead of a bus error on first use";

    ASSERT_TRUE(nxPrivateMemory::Mount());
    struct rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    struct rlimit limit = before;
    limit.rlim_cur = 4096;
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    EXPECT_TRUE(nxWindowsMutex("limit").IsNull()) << "refused, instead of a signal";
    setrlimit(RLIMIT_FSIZE, &before);

    ASSERT_EQ(mount("none", "/tmp", "tmpfs", 0, ""), 0);
    ASSERT_EQ(mount("none", "/dev/shm", "tmpfs", MS_RDONLY, ""), 0);
    EXPECT_FALSE(nxWindowsMutex("elsewhere").IsNull());
    EXPECT_NE(OnlyEntryOf("/tmp"), "");
}
