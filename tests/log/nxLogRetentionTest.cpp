// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxLogRetention.h"

#include <sys/prctl.h>
#include <algorithm>

#include "tests/support/nxLogFolderTest.h"

namespace
{
namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class nxLogRetentionTest : public nxLogFolderTest
{
protected:
    // The old file of a rotation, when it is closed.
    static fs::path Rotate(const std::string& text)
    {
        const fs::path path = Device().GetFileName();
        NX_LOG(NX_LOG_LEVEL_WARNING) << text;
        WaitUntilWritten();
        Device().CloseAndReopenLogFile();
        return path;
    }
};

constexpr std::size_t mebibyte = std::size_t{1} << 20;
}  // namespace

TEST_F(nxLogRetentionTest, RemovesTheOldestFilesBeyondEachLimit)
{
    const Texts names = {"01Mar2024/orders_090703_4711_1.log", "02Mar2024/orders_090703_4711_2.log.gz",
                         "03Mar2024/orders_235959_1_10.log.zst", "03Mar2024/orders_235959_1_9.log.xz"};
    const struct
    {
        const char* key;
        const char* value;
        nxLogRetention ofTheProgram;
        std::ptrdiff_t removed;
    } rows[] = {
        {"NX_LOG_KEEP_FILES", "3", {}, 2},
        {"NX_LOG_KEEP_FILES", "1", {9, 0, 0, ""}, 4},  // the open one
        {"NX_LOG_KEEP_FILES", "x", {3, 0, 0, ""}, 2},
        {"NX_LOG_KEEP_MEGABYTES", "3", {}, 1},
        {"NX_LOG_KEEP_DAYS", "35", {}, 1},
        {"NX_LOG_KEEP_DAYS", "25", {4, 3, 0, ""}, 2},
        {"NX_LOG_KEEP_FILES", "5", {0, 9, 99, ""}, 0},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(std::string(row.key) + '=' + row.value);
        fs::remove_all(GetDirectory());
        for (std::size_t i = 0; i < names.size(); ++i)
            Make(names[i], mebibyte - 1'000, i == 3 ? -400.0 : 40.0 - 10.0 * static_cast<double>(i));
        setenv(row.key, row.value, 1);
        Create(row.ofTheProgram);
        unsetenv(row.key);
        const auto isAsWanted = [&](const std::string& name)
        { return fs::exists(GetDirectory() / name) == (&name - names.data() >= row.removed); };
        EXPECT_TRUE(nxEventually([&] { return std::all_of(names.begin(), names.end(), isAsWanted); }));
        Device().CloseAndReopenLogFile();  // the next pass finds the directory empty
        EXPECT_TRUE(nxEventually([&] { return fs::exists(GetDirectory() / "01Mar2024") == (row.removed == 0); }));
        Device().Destroy();
    }
}

TEST_F(nxLogRetentionTest, LeavesWhatIsNotItsOwnOrInUse)
{
    const Texts others = {"1Mar2024/orders_090703_4711_1.log",    "30Feb2024/orders_090703_4711_1.log",
                          "01mar2024/orders_090703_4711_1.log",   "01Mar2024/orders2_090703_4711_1.log",
                          "01Mar2024/orders_90703_4711_1.log",    "01Mar2024/orders_090703_04711_1.log",
                          "01Mar2024/orders_090703_4711_.log",    "01Mar2024/orders_090703_4711_1_1.log",
                          "01Mar2024/orders_090703_4711_1.log1",  "01Mar2024/orders_090703_4711_1.log.1",
                          "01Mar2024/orders_090703_4711_1.LOG",   "01Mar2024/orders_090703_4711_99999999999.log",
                          "01Mar2024/below/orders_090703_1_1.log"};
    for (const std::string& name : others)
        Make(name, 1, 50);
    const fs::path used = Make("01Mar2024/orders_090703_4711_2.log", 1, 50);
    const fs::path link = GetDirectory() / "01Mar2024/orders_090703_4711_3.log";
    fs::create_symlink(used, link);
    fs::create_directory_symlink(GetDirectory() / "01Mar2024", GetDirectory() / "02Mar2024");
    const fs::path foreign = Make("01Mar2024/orders_090703_4711_4.log", 1, 50);
    const bool isRoot = geteuid() == 0 && chown(foreign.c_str(), 1, 1) == 0;
    const fs::path first = Make("01Mar2024/orders_090703_4711_5.log", 0);  // another process may be about to lock it
    // As another process holds its open file.
    const int descriptor = open(used.c_str(), O_WRONLY | O_CLOEXEC);
    struct flock lock = {};
    lock.l_type = F_WRLCK;
    lock.l_len = 1;
    ASSERT_EQ(fcntl(descriptor, F_OFD_SETLK, &lock), 0);

    Create({1, 1, 1, ""});
    EXPECT_TRUE(fs::exists(used));
    // Its process was killed.
    close(descriptor);
    Device().CloseAndReopenLogFile();
    EXPECT_TRUE(nxEventually([&] { return !fs::exists(used); }));
    for (const std::string& name : others)
        EXPECT_TRUE(fs::exists(GetDirectory() / name)) << name;
    EXPECT_TRUE(fs::is_symlink(link) && fs::exists(first));
    EXPECT_EQ(fs::exists(foreign), isRoot);
}

TEST_F(nxLogRetentionTest, CompressesClosedFilesWithoutAChild)
{
    static std::atomic<int> signals{0};
    const auto before = signal(SIGCHLD, [](int) { ++signals; });
    const std::pair<const char*, const char*> programs[] = {{"gzip", ".gz"}, {"zstd", ".zst"}, {"/usr/bin/xz", ".xz"}};
    for (const auto& [program, ending] : programs)
    {
        SCOPED_TRACE(program);
        if (!fs::exists(fs::path("/usr/bin") / fs::path(program).filename()))
            continue;
        Create({3, 0, 0, program});
        Rotate("first");
        const fs::path closed = Rotate("compress me"), compressed = closed.string().append(ending);
        EXPECT_TRUE(nxEventually([&] { return !fs::exists(closed); })) << GetErrors();
        EXPECT_EQ(signals, 0);
        const std::string expand = std::string(program) + " -dc " + compressed.string() + " | grep -q 'compress me'";
        EXPECT_EQ(std::system(expand.c_str()), 0);
        signals = 0;  // of the line above
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
        Device().CloseAndReopenLogFile();
        Device().CloseAndReopenLogFile();
        EXPECT_TRUE(nxEventually([&] { return !fs::exists(compressed); })) << "beyond the limit";
        Device().Destroy();
    }
    signal(SIGCHLD, before);
}

namespace
{
// A file that the library is about to claim. It is open here, so that its lock can be seen. The compressor waits for another
// file to go.
std::string removedMeanwhile, waitsFor;
int removedMeanwhileOpen = -1;

bool IsOpenedByTheLibrary()
{
    for (const auto& entry : fs::directory_iterator("/proc/self/fd"))
        if (std::error_code gone; fs::read_symlink(entry.path(), gone) == removedMeanwhile &&
                                  entry.path().filename() != std::to_string(removedMeanwhileOpen))
            return true;
    return false;
}

// Between the library's opening of the file and its attempt to lock it, the compressor removes the file and ends.
void LetTheCompressorEnd()
{
    static bool isInside = false;  // this function looks at the lock by the same call
    if (isInside || !IsOpenedByTheLibrary())
        return;
    isInside = true;
    const auto isFree = []
    {
        struct flock lock = {};
        lock.l_type = F_WRLCK;
        lock.l_len = 1;
        return fcntl(removedMeanwhileOpen, F_OFD_GETLK, &lock) == 0 && lock.l_type == F_UNLCK;
    };
    if (!isFree())  // the compressor has begun
        fs::remove(waitsFor);
    EXPECT_TRUE(nxEventually(isFree));
    isInside = false;
}
}  // namespace

TEST_F(nxLogRetentionTest, ACompressorThatEndsWhileItsFileIsLookedAtHasNotFailed)
{
    waitsFor = GetRoot() / "wait";
    nxWriteFile(waitsFor, "");
    Create({0, 0, 0, MakeCompressor("while [ -e " + waitsFor + " ]; do sleep 0.01; done\nmv $2 $2.gz")});
    const fs::path first = Rotate("first"), second = Device().GetFileName();
    removedMeanwhile = first;
    removedMeanwhileOpen = open(first.c_str(), O_RDWR | O_CLOEXEC);
    {
        const nxSystemCallFault fault("fcntl", 0, {.times = 1'000'000, .meanwhile = LetTheCompressorEnd});
        EXPECT_TRUE(nxEventually(
            [&]
            {
                Device().CloseAndReopenLogFile();
                return !fs::exists(first);
            }));
    }
    close(removedMeanwhileOpen);
    EXPECT_TRUE(nxEventually([&] { return !fs::exists(second); })) << GetErrors();
    EXPECT_EQ(GetErrors().find("Failed to compress"), std::string::npos);
}

TEST_F(nxLogRetentionTest, KeepsTheFileOfACompressorThatFailsOrIsKilled)
{
    const fs::path crashed = Make("01Mar2024/orders_090703_4711_1.log", 9), half = crashed.string().append(".gz");
    Create({0, 0, 0, MakeCompressor("printf half > $2.gz\nkill -9 $$")});
    EXPECT_TRUE(
        nxEventually([&] { return GetErrors().find("Failed to compress log file orders_") != std::string::npos; }));
    EXPECT_EQ(nxReadFile(crashed).size(), 9U);

    // It may be another program's that is still writing; an hour later it is not.
    Device().SetRetention({0, 0, 0, "gzip"});
    Device().CloseAndReopenLogFile();
    EXPECT_EQ(nxReadFile(half), "half");
    SetAge(half, 0.05);
    Device().CloseAndReopenLogFile();
    EXPECT_TRUE(nxEventually([&] { return !fs::exists(crashed); }));
    EXPECT_EQ(nxReadFile(half).substr(0, 2), "\x1f\x8b");
}

TEST_F(nxLogRetentionTest, StartsTheCompressorInACleanPlace)
{
    const fs::path report = GetRoot() / "report";
    constexpr int inherited = 77;  // without close-on-exec
    dup2(STDERR_FILENO, inherited);
    const auto before = signal(SIGUSR1, SIG_IGN);
    prctl(PR_SET_CHILD_SUBREAPER, 1);  // it is a child nevertheless
    Create({0, 0, 0, MakeCompressor("exec > " + report.string() + R"(
            env | sort | grep -v ^PWD=
            ls /proc/$$/fd | grep -e '^3$' -e '^77$'
            until [ $(nice) = 19 ]; do sleep 0.01; done  # set after the start
            nice
            sed -n 's/^SigIgn.*\(.......\)$/\1/p' /proc/self/status
            pwd
            echo "$@"
            mv $2 $2.gz)")});
    const fs::path closed = Rotate("text");
    EXPECT_TRUE(nxEventually([&] { return !fs::exists(closed); }));
    EXPECT_EQ(nxReadFile(report), "LC_ALL=C\nPATH=/usr/bin:/bin\n3\n19\n0000000\n" + closed.parent_path().string() +
                                      "\n-- " + closed.filename().string() + "\n");
    siginfo_t child;
    EXPECT_TRUE(nxEventually([&] { return waitid(P_ALL, 0, &child, WEXITED | WNOHANG | WNOWAIT) == -1; }))
        << "a zombie";
    prctl(PR_SET_CHILD_SUBREAPER, 0);
    signal(SIGUSR1, before);
    close(inherited);
}
