// SPDX-License-Identifier: Apache-2.0
// Where the named objects of nxWindowsMutex and nxWindowsSemaphore lie, and everything that may be in the way.

#include "core/thread/nxWindowsMutex.h"
#include "tests/support/nxPrivateMemory.h"
#include "tests/support/nxSystemTest.h"
#include "tests/thread/nxNamedObjects.h"

namespace
{
namespace fs = std::filesystem;

// Everything in /dev/shm, with type, mode and size.
std::map<std::string, std::string> SharedFiles()
{
    std::map<std::string, std::string> found;
    for (const auto& entry : fs::recursive_directory_iterator("/dev/shm"))
    {
        struct stat status = {};
        lstat(entry.path().c_str(), &status);
        found[entry.path()] = std::to_string(status.st_mode) + ' ' + std::to_string(status.st_size);
    }
    return found;
}
}  // namespace

TEST(namedObjects, WhatTheSystemRefusesLeavesANullObjectAndNothingElse)
{
    if (!nxPrivateMemory::InNewProcess())
        return;
    // In the order of their use: what has succeeded once is not asked for again.
    const nxCapturingLogDevice log;
    for (const char* const function :
         {"open", "mkdir", "openat", "fstat", "fcntl", "posix_fallocate", "mmap", "pthread_mutexattr_init",
          "pthread_mutexattr_settype", "pthread_mutexattr_setpshared", "pthread_mutexattr_setrobust",
          "pthread_mutex_init"})
    {
        SCOPED_TRACE(function);
        const nxSystemCallFault fault(function, ENOSPC, {.times = 2});
        EXPECT_TRUE(nxWindowsMutex(function).IsNull());
        EXPECT_EQ(errno, ENOSPC);
        EXPECT_GE(fault.GetHits(), 1U);
    }
    WaitUntilWritten();
    const auto records = log.GetRecords();
    ASSERT_EQ(records.size(), 1U) << "one for all of them\n" << log;
    EXPECT_EQ(records[0].level, NX_LOG_LEVEL_ERROR);
    EXPECT_NE(records[0].text.find("'open' excludes nobody. Error 28: "), std::string::npos) << log;
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
    if (!nxPrivateMemory::InNewProcess())
        return;
    ASSERT_TRUE(nxInChild([] { EXPECT_FALSE(nxWindowsMutex("first").IsNull()); }));
    const fs::path directory = fs::directory_iterator("/dev/shm")->path();
    const fs::path file = fs::directory_iterator(directory)->path();
    const fs::path target = "/dev/shm/target";
    const auto write = [](const fs::path& path, const char* contents, mode_t mode)
    {
        nxWriteFile(path, contents);
        chmod(path.c_str(), mode);
    };
    const auto makeDirectory = [](const fs::path& path, mode_t mode)
    {
        mkdir(path.c_str(), mode);
        chmod(path.c_str(), mode);
    };
    const std::pair<const char*, std::function<void(const fs::path& place)>> plants[] = {
        {"a directory that others can enter", [&](const fs::path& place) { makeDirectory(place, 0755); }},
        {"another user's directory",
         [&](const fs::path& place)
         {
             makeDirectory(place, 0700);
             if (chown(place.c_str(), 12345, 12345) != 0)
                 chmod(place.c_str(), 0777);
         }},
        {"a pipe", [](const fs::path& place) { mkfifo(place.c_str(), 0600); }},
        {"a link to a file", [&](const fs::path& place) { fs::create_symlink(target, place); }},
        {"a link to a directory of ours",
         [&](const fs::path& place)
         {
             makeDirectory("/dev/shm/ours", 0700);
             fs::create_symlink("/dev/shm/ours", place);
         }},
        {"a link to nowhere", [](const fs::path& place) { fs::create_symlink("/dev/shm/nowhere", place); }},
        {"a second name of another file", [&](const fs::path& place) { fs::create_hard_link(target, place); }},
        {"a file that others can write", [&](const fs::path& place) { write(place, "", 0666); }},
        {"a file that is far too large",
         [&](const fs::path& place)
         {
             write(place, "", 0600);
             EXPECT_EQ(truncate(place.c_str(), 1LL << 40), 0);
         }},
    };
    for (const auto& [what, plant] : plants)
        for (const fs::path& place : {directory, file})
        {
            SCOPED_TRACE(testing::Message() << what << " in the place of " << place);
            ASSERT_TRUE(nxPrivateMemory::Mount());
            write(target, "not yours", 0600);
            if (place == file)
                makeDirectory(directory, 0700);
            plant(place);
            const auto before = SharedFiles();
            EXPECT_TRUE(nxWindowsMutex("mine").IsNull());
            EXPECT_EQ(SharedFiles(), before);
            EXPECT_EQ(nxReadFile(target), "not yours");
        }
    ASSERT_TRUE(nxPrivateMemory::Mount());
    makeDirectory(directory, 0700);
    write(file, "not yours", 0600);  // a file of ours that holds something else
    EXPECT_TRUE(nxWindowsMutex("mine").IsNull());
    EXPECT_EQ(nxReadFile(file).substr(0, 9), "not yours");
    fs::remove(file);
    EXPECT_FALSE(nxWindowsMutex("mine").IsNull()) << "and once all that has gone";
}

TEST(namedObjects, WithoutRoomOrSharedMemory)
{
    if (!nxPrivateMemory::InNewProcess("size=16k"))
        return;
    EXPECT_TRUE(nxWindowsMutex("full").IsNull()) << "refused, instead of a bus error on first use";

    ASSERT_TRUE(nxPrivateMemory::Mount());
    struct rlimit before = {};
    getrlimit(RLIMIT_FSIZE, &before);
    const struct rlimit limit = {4096, before.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limit), 0);
    EXPECT_TRUE(nxWindowsMutex("limit").IsNull()) << "refused, instead of a signal";
    setrlimit(RLIMIT_FSIZE, &before);

    ASSERT_EQ(mount("none", "/tmp", "tmpfs", 0, ""), 0);
    ASSERT_EQ(mount("none", "/dev/shm", "tmpfs", MS_RDONLY, ""), 0);
    EXPECT_TRUE(nxWindowsMutex("elsewhere").IsNull()) << "others may have found it writable";
    EXPECT_EQ(EntriesOf("/tmp"), 0U);
    ASSERT_EQ(mount("none", "/dev", "tmpfs", 0, ""), 0);
    EXPECT_FALSE(nxWindowsMutex("elsewhere").IsNull());
    EXPECT_EQ(EntriesOf("/tmp"), 1U);
}

TEST(namedObjects, LieWhereTheSettingSaysAndNowhereElse)
{
    if (!nxPrivateMemory::InNewProcess())
        return;
    const nxScratchDirectory place;
    const fs::path missing = place.GetPath() / "missing";
    setenv("NX_SHARED_DIRECTORY", "relative", 1);
    EXPECT_TRUE(nxInChild([] { EXPECT_TRUE(nxWindowsMutex("name").IsNull()); }));
    setenv("NX_SHARED_DIRECTORY", missing.c_str(), 1);
    nxWindowsSemaphore before("name", 1, 1);
    EXPECT_TRUE(before.IsNull());
    setenv("NX_SHARED_DIRECTORY", place.GetPath().c_str(), 1);
    EXPECT_TRUE(nxWindowsMutex("name").IsNull()) << "read once";
    fs::create_directory(missing);
    EXPECT_FALSE(nxWindowsMutex("name").IsNull());
    EXPECT_EQ(EntriesOf(missing.c_str()), 1U);
    EXPECT_EQ(EntriesOf("/dev/shm"), 0U);
}

TEST(namedObjects, AProcessThatIsStoppedInTheTableStopsNoOther)
{
    if (!nxPrivateMemory::InNewProcess())
        return;
    nxStage stage;
    nxWindowsMutex first("first");
    nxChildProcess stopped(
        [&]
        {
            const fs::path file = fs::directory_iterator(fs::directory_iterator("/dev/shm")->path())->path();
            struct flock table = {};
            table.l_type = F_WRLCK;
            table.l_len = 1;
            EXPECT_EQ(fcntl(open(file.c_str(), O_RDWR), F_OFD_SETLK, &table), 0);
            stage.Reach(1);
            pause();
        });
    stage.WaitFor(1);
    EXPECT_TRUE(nxInChild(
        [&]
        {
            const nxHurriedClock clock(1'000'000'000);
            EXPECT_TRUE(nxWindowsMutex("second").IsNull());
            EXPECT_EQ(errno, ETIMEDOUT);
            EXPECT_FALSE(nxWindowsMutex("first").IsNull()) << "open already";
            for (int descriptor = 3; descriptor < 1024; ++descriptor)
                close(descriptor);
            EXPECT_TRUE(nxWindowsMutex("first").IsNull()) << "another process may be writing its entry";
        }));
    stopped.Kill();
    EXPECT_FALSE(nxWindowsMutex("second").IsNull());
}

TEST(namedObjects, RemovingTheFileIsReportedOnce)
{
    if (!nxPrivateMemory::InNewProcess())
        return;
    const nxCapturingLogDevice log;
    nxWindowsMutex mutex("name");
    for (const auto& entry : fs::directory_iterator("/dev/shm"))
        fs::remove_all(entry.path());
    EXPECT_FALSE(nxWindowsMutex("other").IsNull());
    EXPECT_FALSE(nxWindowsMutex("name").IsNull());
    EXPECT_TRUE(log.WaitFor(nxCapturingLogDevice::Contains("was removed")));
    EXPECT_EQ(log.GetRecords().size(), 1U) << log;
}

TEST(namedObjects, TheIdentityIsPartOfThePlace)
{
    constexpr uid_t other = 12'345;
    if (!nxMayBecome(other))
        GTEST_SKIP() << "other users: only root can become one, where there is one";
    if (!nxPrivateMemory::InNewProcess())
        return;
    const auto expectOwn = [](unsigned count) { EXPECT_EQ(CountIn("name", count), count) << "of its own making"; };
    nxWindowsSemaphore ofRoot("name", 5, 5);
    const fs::path directory = fs::directory_iterator("/dev/shm")->path();
    const fs::path file = fs::directory_iterator(directory)->path();
    nxStage stage;
    nxChildProcess daemon(
        [&]
        {
            ASSERT_EQ(seteuid(other), 0);
            nxWindowsSemaphore dropped("name", 3, 5);
            stage.Reach(1);
            stage.WaitFor(2);
            EXPECT_EQ(Drain(dropped), 2U);
            ASSERT_EQ(seteuid(0), 0);
            nxWindowsSemaphore again("name", 1, 1);
            EXPECT_EQ(Drain(again), 5U) << "root's, as before";
        });
    stage.WaitFor(1);
    EXPECT_TRUE(nxInChild(
        [&]
        {
            ASSERT_EQ(setuid(other), 0);
            umask(0777);  // takes rights only from this process's own files
            EXPECT_TRUE(nxWindowsSemaphore("name", 9, 9).TimedWait(0).IsOK());
            EXPECT_EQ(open(directory.c_str(), O_RDONLY), -1) << "root's";
            EXPECT_EQ(open(file.c_str(), O_RDWR), -1);
            EXPECT_EQ(errno, EACCES);
            EXPECT_NE(rename(directory.c_str(), "/dev/shm/away"), 0);
        }));
    stage.Reach(2);
    EXPECT_TRUE(daemon.Succeeds());
    // The thread sanitizer's own thread keeps a process in its name space.
    EXPECT_TRUE(nxUnderThreadSanitizer || nxInChild([&] { ASSERT_EQ(unshare(CLONE_NEWUSER), 0), expectOwn(4); }))
        << "another user name space";

    // A umask that leaves no rights, in the first process of a user.
    const auto asThird = [](mode_t mask, const auto& body)
    {
        return nxInChild(
            [&]
            {
                ASSERT_EQ(setuid(other + 1), 0);
                umask(mask);
                body();
            });
    };
    EXPECT_TRUE(asThird(0777, [&] { expectOwn(2); }));
    EXPECT_TRUE(asThird(022, [&] { expectOwn(3); }));

    ASSERT_EQ(mount("none", "/proc", "tmpfs", 0, ""), 0);
    EXPECT_FALSE(nxWindowsMutex("known").IsNull()) << "it has been told before";
    EXPECT_TRUE(nxInChild([] { EXPECT_TRUE(nxWindowsMutex("name").IsNull()); })) << "it cannot tell which user it is";
    EXPECT_EQ(umount("/proc"), 0);  // which sanitizers want at the end
}
