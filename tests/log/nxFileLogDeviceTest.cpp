#include "core/log/nxFileLogDevice.h"

#include <fcntl.h>
#include <fnmatch.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "core/log/nxLog.h"
#include "core/log/nxLogMacros.h"
#include "core/log/nxLogManager.h"
#include "core/thread/nxThreadIndex.h"
#include "tests/support/nxSanitizer.h"

namespace
{
namespace fs = std::filesystem;

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The lines of a file; one that is torn counts as a failure.
std::vector<std::string> Lines(const fs::path& path)
{
    const std::string content = ReadFile(path);
    std::vector<std::string> lines;
    std::size_t begin = 0;
    for (std::size_t end; (end = content.find("\r\n", begin)) != std::string::npos; begin = end + 2)
        lines.push_back(content.substr(begin, end - begin));
    EXPECT_EQ(content.substr(begin), "") << "a torn line";
    return lines;
}

std::size_t Count(const std::string& text, const std::string& part)
{
    std::size_t count = 0;
    for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; at += part.size())
        ++count;
    return count;
}

// Replaces a descriptor of the process by a file, for the length of a test.
class Redirected
{
public:
    Redirected(int descriptor, const fs::path& file) : _descriptor(descriptor), _before(dup(descriptor)), _file(file)
    {
        const int opened = open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(opened, descriptor);
        close(opened);
    }
    ~Redirected()
    {
        dup2(_before, _descriptor);
        close(_before);
    }
    std::string GetText() const { return ReadFile(_file); }

private:
    int _descriptor;
    int _before;
    fs::path _file;
};

// Runs in a child; true when that comes to the end and all that it requires holds.
bool InChild(const std::function<bool()>& action)
{
    const pid_t child = fork();
    if (child == 0)
    {
        alarm(60);
        _exit(action() ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    int status = -1;
    return waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS;
}

bool Eventually(const std::function<bool()>& holds)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!holds())
    {
        if (std::chrono::steady_clock::now() > end)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return true;
}

// A line of about `size` bytes, without its end.
std::string LineOf(std::size_t number, std::size_t size)
{
    std::string line = std::to_string(number);
    line.append(size, 'x');
    return line;
}

constexpr long long moment = 1'709'629'623;  // 5 March 2024, 09:07:03 UTC

nxLog Record(const std::string& text, nxEnumValue level = NX_LOG_LEVEL_INFO)
{
    nxLog record(level, "tests/device", 107, nxTimeStamp(moment, 123'456'789));
    record << text;
    return record;
}

void Write(const std::string& text, nxEnumValue level = NX_LOG_LEVEL_INFO)
{
    nxFileLogDevice::GetInstance().Write(Record(text, level));
}

// As the log's thread hands them over.
void WriteBatch(const std::string& lines, nxEnumValue worst = NX_LOG_LEVEL_INFO, long long second = moment)
{
    const auto count = static_cast<unsigned>(std::count(lines.begin(), lines.end(), '\n'));
    nxFileLogDevice::GetInstance().GetLineSink()->WriteLines({lines.data(), lines.size(), count, worst, second});
}

class nxFileLogDeviceTest : public testing::Test
{
protected:
    nxFileLogDeviceTest()
    {
        const auto* test = testing::UnitTest::GetInstance()->current_test_info();
        _root = fs::temp_directory_path() / ("nxFileLogDevice_" + std::to_string(getpid()) + "_" + test->name());
        fs::remove_all(_root);
        fs::create_directory(_root);
        _errors = std::make_unique<Redirected>(STDERR_FILENO, _root / "errors");
        for (const char* key : keys)
            unsetenv(key);
        SetZone("UTC0");
        Set("QRX_LOG_DIRECTORY", GetDirectory().c_str());
        // Long enough that no test depends on it.
        Set("QRX_LOG_TIME_BETWEEN_FLUSHES", "3600");
    }
    ~nxFileLogDeviceTest() override
    {
        Device().Destroy();
        umount2(GetDirectory().c_str(), MNT_DETACH);
        std::error_code ignored;
        fs::permissions(GetDirectory(), fs::perms::owner_all, ignored);
        fs::remove_all(_root, ignored);
        for (const char* key : keys)
            unsetenv(key);
        tzset();
    }

    static constexpr const char* keys[] = {"TZ",
                                           "QRX_LOG_DIRECTORY",
                                           "QRX_LOG_FORCE_FLUSH",
                                           "QRX_LOG_TIME_BETWEEN_FLUSHES",
                                           "QRX_LOG_FILE_BUFF_SIZE_MB",
                                           "QRX_LOG_RECREATE_ON_CHANGE_OF_DATE"};

    static nxFileLogDevice& Device() { return nxFileLogDevice::GetInstance(); }
    static void Set(const char* key, const char* value) { setenv(key, value, 1); }
    static void SetZone(const char* zone)
    {
        Set("TZ", zone);
        tzset();
    }

    bool Create(unsigned long long limit = 0) { return Device().Create(nxValueWrapper<unsigned long long>(limit)); }

    fs::path GetDirectory() const { return _root / "log"; }
    std::string GetErrors() const { return _errors->GetText(); }

    // In order of their sequence numbers.
    std::vector<fs::path> GetFiles() const
    {
        std::vector<std::pair<int, fs::path>> files;
        if (fs::exists(GetDirectory()))
            for (const auto& entry : fs::recursive_directory_iterator(GetDirectory()))
                if (entry.is_regular_file())
                {
                    const std::string stem = entry.path().stem().string();
                    files.emplace_back(std::stoi(stem.substr(stem.rfind('_') + 1)), entry.path());
                }
        std::sort(files.begin(), files.end());
        std::vector<fs::path> paths;
        for (auto& [sequence, path] : files)
            paths.push_back(path);
        return paths;
    }

    std::vector<std::string> AllLines() const
    {
        std::vector<std::string> all;
        for (const fs::path& file : GetFiles())
            for (std::string& line : Lines(file))
                all.push_back(std::move(line));
        return all;
    }

    fs::path _root;
    std::unique_ptr<Redirected> _errors;
};

constexpr bool isSanitized =
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    true;
#elif defined(__has_feature)
    #if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
    true;
    #else
    false;
    #endif
#else
    false;
#endif
}  // namespace

TEST_F(nxFileLogDeviceTest, WritesLinesInBothForms)
{
    ASSERT_TRUE(Create());
    nxLogManager& manager = nxLogManager::GetInstance();
    const bool before = manager.GetLogThreadIndex();
    manager.SetLogThreadIndex(true);
    Write("with index", NX_LOG_LEVEL_FATAL);
    manager.SetLogThreadIndex(false);
    Write("");
    manager.SetLogThreadIndex(before);
    const std::string index = std::to_string(nxThreadIndex::GetIndexOfCurrentThread());
    EXPECT_EQ(ReadFile(Device().GetFileName()), "[FTL][05Mar24 09:07:03.123.456][" + index +
                                                    "] with index [tests/device:107]\r\n" +
                                                    "[INF][05Mar24 09:07:03.123.456]  [tests/device:107]\r\n");
    EXPECT_EQ(GetErrors(), "");
}

TEST_F(nxFileLogDeviceTest, NamesFilesByDateApplicationStartProcessAndSequence)
{
    ASSERT_TRUE(Create());
    const fs::path first = Device().GetFileName();
    const std::string ending = std::string("_") + std::to_string(getpid()) + "_";
    const std::string pattern = GetDirectory().string() + "/[0-3][0-9][A-Z][a-z][a-z]20[0-9][0-9]" +
                                "/*_[0-2][0-9][0-5][0-9][0-5][0-9]" + ending + "*.log";
    EXPECT_EQ(fnmatch(pattern.c_str(), first.c_str(), FNM_PATHNAME), 0) << first << " is not " << pattern;
    const std::string prefix = Device().GenerateLogDirectoryFilenamePrefix() + "_";
    EXPECT_TRUE(first.string().starts_with(prefix)) << prefix;

    const std::string stem = first.string().substr(0, first.string().rfind('_') + 1);
    const int sequence = std::stoi(first.string().substr(stem.size()));
    const std::string next = Device().GenerateFileName();
    EXPECT_EQ(next, stem + std::to_string(sequence + 1) + ".log");

    EXPECT_FALSE(Create()) << "a file is open already";
    EXPECT_EQ(Device().GetFileName(), first);
    Device().CloseAndReopenLogFile();
    EXPECT_EQ(Device().GetFileName(), next);

    struct stat status = {};
    ASSERT_EQ(stat(first.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777 & ~0640U, 0U);
    ASSERT_EQ(stat(first.parent_path().c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777 & ~0750U, 0U);
}

TEST_F(nxFileLogDeviceTest, IsRegisteredFromCreateToDestroy)
{
    nxLogManager& manager = nxLogManager::GetInstance();
    ASSERT_TRUE(Create());
    manager.ImmediateWrite(Record("one"));
    const fs::path first = Device().GetFileName();
    NX_LOG(NX_LOG_LEVEL_INFO) << "queued";
    Device().Destroy();
    EXPECT_EQ(Device().GetFileName(), "");
    EXPECT_EQ(Count(ReadFile(first), "] queued ["), 1U);
    manager.ImmediateWrite(Record("nowhere"));
    Device().CloseAndReopenLogFile();
    Device().Destroy();
    EXPECT_EQ(GetFiles().size(), 1U);
    ASSERT_TRUE(Create());
    manager.ImmediateWrite(Record("two"));
    EXPECT_NE(Device().GetFileName(), first);
    EXPECT_EQ(Count(ReadFile(first), "one"), 1U);
    EXPECT_EQ(Count(ReadFile(Device().GetFileName()), "two"), 1U);
    EXPECT_EQ(Count(ReadFile(first) + ReadFile(Device().GetFileName()), "nowhere"), 0U);
}

TEST_F(nxFileLogDeviceTest, BeginsANewFileBeyondTheSizeLimit)
{
    // Each file takes lines until it has more than 100 bytes; a batch does what single lines do.
    for (const bool asBatch : {false, true})
    {
        SCOPED_TRACE(asBatch);
        fs::remove_all(GetDirectory());
        ASSERT_TRUE(Create(100));
        std::string batch;
        for (int i = 0; i < 9; ++i)
        {
            const std::string line = LineOf(static_cast<std::size_t>(i), 38) + "\r\n";  // 41 bytes
            batch += line;
            if (!asBatch)
                WriteBatch(line);
        }
        if (asBatch)
            WriteBatch(batch);
        Device().Destroy();
        const std::vector<fs::path> files = GetFiles();
        ASSERT_EQ(files.size(), 4U);
        for (std::size_t i = 0; i < 3; ++i)
        {
            const std::vector<std::string> lines = Lines(files[i]);
            const std::size_t begin = i == 0 ? 0 : 1;
            ASSERT_EQ(lines.size(), begin + 4);
            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_EQ(lines[begin + k], LineOf(3 * i + k, 38));
            EXPECT_EQ(Count(lines.back(), "Closing log file: " + files[i].string() + " ["), 1U) << lines.back();
            EXPECT_EQ(Count(Lines(files[i + 1]).front(), "Successfully opened log file: " + files[i + 1].string() +
                                                             ", Previous log file: " + files[i].string() + " ["),
                      1U);
        }
        EXPECT_EQ(Lines(files[3]).size(), 1U);
    }
}

TEST_F(nxFileLogDeviceTest, DoesNotRotateForItsOwnRecords)
{
    // Far less than one of the device's records.
    ASSERT_TRUE(Create(10));
    WriteBatch("0123456789012\r\n");
    EXPECT_EQ(GetFiles().size(), 2U);
    WriteBatch("12345678\r\n");  // exactly the limit
    EXPECT_EQ(GetFiles().size(), 2U);
    WriteBatch("\r\n");
    EXPECT_EQ(GetFiles().size(), 3U);
}

TEST_F(nxFileLogDeviceTest, KeepsQuietAboutRotationBelowItsLevel)
{
    const nxLogLevelEnum before = nxLogManager::GetLogLevel();
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_WARNING);
    ASSERT_TRUE(Create());
    Device().CloseAndReopenLogFile();
    nxLogManager::SetLogLevel(before);
    EXPECT_TRUE(AllLines().empty());
    EXPECT_EQ(GetFiles().size(), 2U);
}

TEST_F(nxFileLogDeviceTest, OpensNothingThatExists)
{
    ASSERT_TRUE(Create());
    const fs::path victim = _root / "victim";
    std::ofstream(victim) << "precious";
    const std::string taken = Device().GenerateFileName();
    fs::create_symlink(victim, taken);
    Device().CloseAndReopenLogFile();
    const std::string second = Device().GetFileName();
    EXPECT_NE(second, taken);
    const std::string old = Device().GenerateFileName();
    std::ofstream(old) << "older";
    Device().CloseAndReopenLogFile();
    EXPECT_NE(Device().GetFileName(), old);
    Write("new");
    EXPECT_EQ(ReadFile(victim), "precious");
    EXPECT_EQ(ReadFile(old), "older");
    EXPECT_EQ(Count(ReadFile(Device().GetFileName()), "new"), 1U);
    EXPECT_EQ(GetErrors(), "");
}

TEST_F(nxFileLogDeviceTest, SaysWhichDirectoryItUsesWithoutASetting)
{
    const fs::path before = fs::current_path();
    fs::current_path(_root);
    unsetenv("QRX_LOG_DIRECTORY");
    const bool created = Create();
    const std::string name = Device().GetFileName();
    fs::current_path(before);
    EXPECT_TRUE(created);
    EXPECT_TRUE(name.starts_with("c:\\corvane\\log/")) << name;
    EXPECT_TRUE(fs::exists(_root / name));
    EXPECT_EQ(GetErrors(),
              "No Log Directory defined - use the QRX_LOG_DIRECTORY environment variable. "
              "Logging to c:\\corvane\\log\n");
}

TEST_F(nxFileLogDeviceTest, KeepsLinesInItsBufferUnlessTheyMatter)
{
    ASSERT_TRUE(Create());
    const std::string file = Device().GetFileName();
    WriteBatch("waits\r\n");
    EXPECT_EQ(Lines(file).size(), 0U);
    WriteBatch("warning\r\n", NX_LOG_LEVEL_WARNING);
    EXPECT_EQ(Lines(file), (std::vector<std::string>{"waits", "warning"}));
    WriteBatch("waits too\r\n", NX_LOG_LEVEL_PUBLIC_3);
    EXPECT_EQ(Lines(file).size(), 2U);
    Device().Flush();
    EXPECT_EQ(Lines(file).size(), 3U);
    std::string big;
    while (big.size() <= std::size_t{1} << 20)
        big += LineOf(0, 1'000) + "\r\n";
    WriteBatch("before\r\n");
    WriteBatch(big);
    EXPECT_EQ(Count(ReadFile(file), "before\r\n0xxx"), 1U);
    Device().Destroy();

    Set("QRX_LOG_FORCE_FLUSH", "TRUE");
    ASSERT_TRUE(Create());
    for (std::size_t i = 1; i < 4; ++i)
    {
        WriteBatch("at once\r\n");
        EXPECT_EQ(Lines(Device().GetFileName()).size(), i);
    }
}

TEST_F(nxFileLogDeviceTest, BeginsANewFileOnAnotherDateOnlyIfAskedTo)
{
    for (const char* setting : {"FALSE", "TRUE"})
    {
        SCOPED_TRACE(setting);
        fs::remove_all(GetDirectory());
        Set("QRX_LOG_RECREATE_ON_CHANGE_OF_DATE", setting);
        SetZone("AAA-14");
        ASSERT_TRUE(Create());
        const long long now = std::time(nullptr);
        WriteBatch("today\r\n", NX_LOG_LEVEL_INFO, now);
        WriteBatch("of another year\r\n", NX_LOG_LEVEL_INFO, moment);
        EXPECT_EQ(GetFiles().size(), 1U);
        SetZone("BBB+12");  // the day before, at every time of day
        WriteBatch("on another date\r\n", NX_LOG_LEVEL_INFO, now);
        WriteBatch("on the same date\r\n", NX_LOG_LEVEL_INFO, now);
        Device().Destroy();
        const std::vector<fs::path> files = GetFiles();
        ASSERT_EQ(files.size(), setting == std::string("TRUE") ? 2U : 1U);
        EXPECT_EQ(files.size() == 2, files.front().parent_path() != files.back().parent_path());
        EXPECT_EQ(Count(ReadFile(files.back()), "on another date\r\non the same date\r\n"), 1U);
    }
}

TEST_F(nxFileLogDeviceTest, SaysOnceThatThereIsNoDirectoryAndRecovers)
{
    std::ofstream(GetDirectory()) << "in the way";
    EXPECT_FALSE(Create());
    for (int i = 0; i < 5; ++i)
        Write("early " + std::to_string(i));
    EXPECT_FALSE(Create()) << "still in the way";
    const std::string name = Device().GenerateFileName();
    const std::string directory = fs::path(name).parent_path().string();
    const std::string told = "Failed to create directory " + directory + ", errno: " + std::to_string(ENOTDIR) +
                             "\nFailed to create log file. Filename: " + name + "\n";
    EXPECT_EQ(GetErrors(), told + told);  // once for each Create()
    EXPECT_EQ(Device().GetFileName(), "");

    fs::remove(GetDirectory());
    ASSERT_TRUE(Eventually(
        []
        {
            Device().Flush();
            return !Device().GetFileName().empty();
        }));
    Write("late");
    const std::string content = ReadFile(Device().GetFileName());
    EXPECT_LT(content.find("early 0"), content.find("early 4"));
    EXPECT_LT(content.find("early 4"), content.find("late"));
    EXPECT_EQ(Lines(Device().GetFileName()).size(), 6U);
    EXPECT_EQ(GetErrors(), told + told);
}

TEST_F(nxFileLogDeviceTest, GoesOnWhenItsDirectoryVanishes)
{
    ASSERT_TRUE(Create());
    Write("gone");
    const std::string first = Device().GetFileName();
    fs::remove_all(GetDirectory());
    ASSERT_TRUE(Eventually(
        [&]
        {
            Write("here");
            return Device().GetFileName() != first;
        }));
    const std::vector<std::string> lines = Lines(Device().GetFileName());
    EXPECT_EQ(Count(lines.front(), ", Previous log file: " + first + " ["), 1U);
    EXPECT_EQ(Count(lines.back(), "] here ["), 1U);
    EXPECT_EQ(GetErrors(), "Log file was removed. Filename: " + first + "\n");
}

TEST_F(nxFileLogDeviceTest, GoesOnWhenItsDirectoryMayNotBeWritten)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs to be root, to become somebody else";
    fs::create_directory(GetDirectory());
    fs::permissions(_root, fs::perms::all);
    fs::permissions(GetDirectory(),
                    fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read | fs::perms::others_exec);
    fs::permissions(_root / "errors", fs::perms::all);
    constexpr uid_t nobody = 65'534;
    EXPECT_TRUE(InChild(
        [&]
        {
            if (setresuid(nobody, nobody, 0) != 0 || Create())
                return false;
            Write("kept");
            if (setresuid(0, 0, 0) != 0)
                return false;
            fs::permissions(GetDirectory(), fs::perms::all);
            if (setresuid(nobody, nobody, 0) != 0)
                return false;
            return Eventually(
                []
                {
                    Write("later");
                    return !Device().GetFileName().empty();
                });
        }));
    EXPECT_EQ(Count(ReadFile(GetFiles().front()), "] kept ["), 1U);
    EXPECT_EQ(Count(GetErrors(), "Failed to create directory "), 1U);
    EXPECT_EQ(Count(GetErrors(), "errno: " + std::to_string(EACCES)), 1U);
    EXPECT_EQ(Count(GetErrors(), "Failed to create log file. Filename: "), 1U);
}

TEST_F(nxFileLogDeviceTest, LosesWholeLinesOnlyOnAFullDiskAndCountsThem)
{
    fs::create_directory(GetDirectory());
    if (mount("none", GetDirectory().c_str(), "tmpfs", 0, "size=512k") != 0)
        GTEST_SKIP() << "may not mount a small file system";
    const fs::path filler = GetDirectory() / "filler_0";
    std::ofstream(filler) << std::string(200'000, 'f');
    ASSERT_TRUE(Create());
    const std::string file = Device().GetFileName();
    // More than the disk and the buffer hold.
    constexpr std::size_t lines = 20'000;
    for (std::size_t i = 0; i < lines; ++i)
        WriteBatch(LineOf(i, 93) + "\r\n", NX_LOG_LEVEL_WARNING);
    EXPECT_EQ(GetErrors(), "Failed to write log file " + file + ", errno: " + std::to_string(ENOSPC) + "\n");
    const std::size_t full = Lines(file).size();
    EXPECT_GT(full, 100U);
    EXPECT_GT(Device().GetLostLines(), 100U);

    // Room for what was kept.
    mount("none", GetDirectory().c_str(), "tmpfs", MS_REMOUNT, "size=4m");
    EXPECT_TRUE(Eventually(
        [&]
        {
            Device().Flush();
            return Lines(file).size() > full + 10;
        }));
    const std::vector<std::string> all = Lines(file);
    const std::string lost = std::to_string(Device().GetLostLines());
    EXPECT_EQ(all.size() - 1 + Device().GetLostLines(), lines);
    EXPECT_EQ(Count(all.back(), "[WRN]"), 1U);
    EXPECT_EQ(Count(all.back(), "] Lines lost while the log file could not be written: " + lost + " ["), 1U);
    for (std::size_t i = 0; i + 1 < all.size(); ++i)
        ASSERT_EQ(all[i], LineOf(i, 93));
    EXPECT_EQ(Count(GetErrors(), "\n"), 1U);
}

TEST_F(nxFileLogDeviceTest, MendsItselfWhenNobodyReportsAnything)
{
    nxLogManager& manager = nxLogManager::GetInstance();
    manager.SetTimeBetweenFlushes(0);
    const auto report = [&](const char* text)
    {
        NX_LOG(NX_LOG_LEVEL_INFO) << text;
        manager.WaitForWriteThreadToWriteQueueToDisk(30.0);
    };
    // A directory that cannot be made.
    std::ofstream(GetDirectory()) << "in the way";
    EXPECT_FALSE(Create());
    report("kept");
    fs::remove(GetDirectory());
    EXPECT_TRUE(Eventually([&] { return Count(ReadFile(Device().GetFileName()), "] kept [") == 1; }));
    // One that is removed.
    const std::string first = Device().GetFileName();
    fs::remove_all(GetDirectory());
    EXPECT_TRUE(Eventually([&] { return fs::exists(Device().GetFileName()); }));
    EXPECT_NE(Device().GetFileName(), first);
    Device().Destroy();

    // A disk that is full.
    fs::remove_all(GetDirectory());
    fs::create_directory(GetDirectory());
    if (mount("none", GetDirectory().c_str(), "tmpfs", 0, "size=64k") == 0)
    {
        std::ofstream(GetDirectory() / "filler_0") << std::string(100'000, 'f');
        ASSERT_TRUE(Create());
        report("finds no room");
        EXPECT_EQ(Count(GetErrors(), "errno: " + std::to_string(ENOSPC)), 1U);
        fs::remove(GetDirectory() / "filler_0");
        EXPECT_TRUE(Eventually([&] { return Count(ReadFile(Device().GetFileName()), "] finds no room [") == 1; }));
    }
    manager.SetTimeBetweenFlushes(1);
}

TEST_F(nxFileLogDeviceTest, OutlivesTheFileSizeLimitOfTheProcess)
{
    EXPECT_TRUE(InChild(
        [&]
        {
            signal(SIGXFSZ, SIG_DFL);
            if (!Create())
                return false;
            rlimit limit{};
            getrlimit(RLIMIT_FSIZE, &limit);
            const rlim_t before = limit.rlim_cur;
            limit.rlim_cur = 1'000;
            setrlimit(RLIMIT_FSIZE, &limit);
            for (int i = 0; i < 30; ++i)
                Write("line " + std::to_string(i));
            limit.rlim_cur = before;
            setrlimit(RLIMIT_FSIZE, &limit);
            sigset_t waiting;
            sigpending(&waiting);
            return sigismember(&waiting, SIGXFSZ) == 0 && Eventually(
                                                              [&]
                                                              {
                                                                  Device().Flush();
                                                                  return Lines(Device().GetFileName()).size() == 30;
                                                              });
        }));
    EXPECT_EQ(AllLines().size(), 30U);
    EXPECT_EQ(Count(GetErrors(), "Failed to write log file "), 1U);
    EXPECT_EQ(Count(GetErrors(), ", errno: " + std::to_string(EFBIG) + "\n"), 1U);
}

TEST_F(nxFileLogDeviceTest, NeverBecomesAStandardStream)
{
    EXPECT_TRUE(InChild(
        [&]
        {
            close(STDIN_FILENO);
            close(STDOUT_FILENO);
            close(STDERR_FILENO);
            const bool created = Create();
            Write("line");
            const char stray[] = "stray";
            for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                if (write(descriptor, stray, sizeof stray) >= 0)
                    return false;
            return created;
        }));
    EXPECT_EQ(AllLines().size(), 1U);
}

TEST_F(nxFileLogDeviceTest, DoesWithASmallBufferWhenThereIsNoMemory)
{
    if (isSanitized)
        GTEST_SKIP() << "a sanitizer takes all address space for itself";
    Set("QRX_LOG_FILE_BUFF_SIZE_MB", "1024");
    EXPECT_TRUE(InChild(
        [&]
        {
            const rlimit little{std::size_t{800} << 20, RLIM_INFINITY};
            setrlimit(RLIMIT_AS, &little);
            const bool created = Create();
            for (int i = 0; i < 1'000; ++i)
                WriteBatch(LineOf(0, 97) + "\r\n");
            Device().Destroy();
            return created;
        }));
    EXPECT_EQ(AllLines().size(), 1'000U);
    EXPECT_EQ(GetErrors(), "Failed to set a buffer for the log file, performance may be degraded.\n");
}

TEST_F(nxFileLogDeviceTest, HasWarningsAndWhatWasBeforeThemAfterAKill)
{
    const pid_t child = fork();
    if (child == 0)
    {
        Create();
        for (int i = 0; i < 100; ++i)
            WriteBatch("line\r\n");
        WriteBatch("warning\r\n", NX_LOG_LEVEL_WARNING);
        WriteBatch("lost\r\n");
        kill(getpid(), SIGKILL);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    const std::vector<std::string> lines = AllLines();
    ASSERT_EQ(lines.size(), 101U);
    EXPECT_EQ(lines.back(), "warning");
}

TEST_F(nxFileLogDeviceTest, GivesAForkedChildAFileOfItsOwn)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    ASSERT_TRUE(Create());
    WriteBatch("parent 1\r\n");
    WriteBatch("parent waits\r\n");
    const std::string parents = Device().GetFileName();
    const bool childIsRight = InChild(
        [&]
        {
            if (!Device().GetFileName().empty())
                return false;
            WriteBatch("child\r\n", NX_LOG_LEVEL_WARNING);
            const std::string own = Device().GetFileName();
            return Count(own, std::string("_") + std::to_string(getpid()) + "_1.log") == 1 &&
                   Lines(own) == std::vector<std::string>{"child"};
        });
    EXPECT_TRUE(childIsRight);
    WriteBatch("parent 2\r\n", NX_LOG_LEVEL_WARNING);
    EXPECT_EQ(Lines(parents), (std::vector<std::string>{"parent 1", "parent waits", "parent 2"}));
}

TEST_F(nxFileLogDeviceTest, ServesManyThreadsWhileFilesChange)
{
    ASSERT_TRUE(Create(5'000));
    const std::uint64_t lostBefore = Device().GetLostLines();
    constexpr int writers = 4, each = 500;
    std::atomic<int> running{writers};
    std::vector<std::thread> threads;
    for (int t = 0; t < writers; ++t)
        threads.emplace_back(
            [&running]
            {
                for (int i = 0; i < each; ++i)
                    Write("text");
                --running;
            });
    while (running != 0)
    {
        Device().CloseAndReopenLogFile();
        Device().Flush();
        Device().GenerateFileName();
        std::this_thread::yield();
    }
    for (std::thread& thread : threads)
        thread.join();
    Device().Destroy();
    const std::vector<std::string> lines = AllLines();
    EXPECT_EQ(
        std::count_if(lines.begin(), lines.end(), [](const std::string& line) { return Count(line, "] text ["); }),
        writers * each);
    EXPECT_EQ(Device().GetLostLines(), lostBefore);
    EXPECT_EQ(GetErrors(), "");
}
