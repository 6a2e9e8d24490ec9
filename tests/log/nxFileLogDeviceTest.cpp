// SPDX-License-Identifier: Apache-2.0
#include "core/log/nxFileLogDevice.h"

#include <fnmatch.h>
#include <algorithm>

#include <ctime>

#include "core/app/nxApplicationData.h"
#include "tests/support/nxSystemTest.h"
#include "tests/support/nxTestThreads.h"

namespace
{
namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

// The lines of a file; one that is torn counts as a failure.
Texts LinesOf(const fs::path& path)
{
    const std::string content = nxReadFile(path);
    Texts lines;
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

// The number under which this process has the file open.
int DescriptorOf(const std::string& path)
{
    std::error_code gone;  // others may close theirs meanwhile
    for (const auto& entry : fs::directory_iterator("/proc/self/fd"))
        if (fs::read_symlink(entry.path(), gone) == path)
            return std::stoi(entry.path().filename());
    ADD_FAILURE() << path << " is not open";
    return -1;
}

// A line of about `size` bytes, without its end.
std::string LineOf(std::size_t number, std::size_t size) { return std::to_string(number) + std::string(size, 'x'); }

constexpr long long moment = 1'709'629'623;  // 5 March 2024, 09:07:03 UTC

nxFileLogDevice& Device() { return nxFileLogDevice::GetInstance(); }

nxLog Record(const std::string& text, nxEnumValue level = NX_LOG_LEVEL_INFO)
{
    nxLog record(level, "tests/device", 107, nxTimeStamp(moment, 123'456'789));
    record << text;
    return record;
}

// As the log's thread hands them over.
void WriteBatch(const std::string& lines, nxEnumValue worst = NX_LOG_LEVEL_INFO, long long second = moment)
{
    const auto count = static_cast<unsigned>(std::count(lines.begin(), lines.end(), '\n'));
    Device().GetLineSink()->WriteLines({lines.data(), lines.size(), count, worst, second});
}

class nxFileLogDeviceTest : public testing::Test
{
protected:
    nxFileLogDeviceTest()
    {
        for (const char* const key : keys)
            unsetenv(key);
        Set("QRX_LOG_DIRECTORY", GetDirectory().c_str());
        // Long enough that no test depends on it.
        Set("QRX_LOG_TIME_BETWEEN_FLUSHES", "3600");
    }
    ~nxFileLogDeviceTest() override
    {
        Device().Destroy();
        Manager().SetTimeBetweenFlushes(1);
        umount2(GetDirectory().c_str(), MNT_DETACH);
        for (const char* const key : keys)
            unsetenv(key);
    }

    static constexpr const char* keys[] = {"QRX_LOG_DIRECTORY", "QRX_LOG_FORCE_FLUSH", "QRX_LOG_TIME_BETWEEN_FLUSHES",
                                           "QRX_LOG_FILE_BUFF_SIZE_MB", "QRX_LOG_RECREATE_ON_CHANGE_OF_DATE"};

    static void Set(const char* key, const char* value) { setenv(key, value, 1); }
    static bool Create(unsigned long long limit = 0)
    {
        return Device().Create(nxValueWrapper<unsigned long long>(limit));
    }

    const fs::path& GetRoot() const { return _scratch.GetPath(); }
    fs::path GetDirectory() const { return GetRoot() / "log"; }
    std::string GetErrors() const { return nxReadFile(GetRoot() / "errors"); }

    // In order of their sequence numbers.
    std::vector<fs::path> GetFiles() const
    {
        const auto sequence = [](const fs::path& path)
        {
            const std::string stem = path.stem().string();
            return std::stoi(stem.substr(stem.rfind('_') + 1));
        };
        std::vector<fs::path> files;
        for (const auto& entry : fs::recursive_directory_iterator(GetDirectory()))
            if (entry.is_regular_file())
                files.push_back(entry.path());
        std::sort(files.begin(), files.end(),
                  [&](const fs::path& left, const fs::path& right) { return sequence(left) < sequence(right); });
        return files;
    }

    Texts AllLines() const
    {
        Texts all;
        for (const fs::path& file : GetFiles())
            for (std::string& line : LinesOf(file))
                all.push_back(std::move(line));
        return all;
    }

private:
    const nxScratchDirectory _scratch;
    const nxZoneOfProcess _zone{"UTC0"};
    const nxRedirected _errors{STDERR_FILENO,
                               open((GetRoot() / "errors").c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600)};
};
}  // namespace

TEST_F(nxFileLogDeviceTest, NamesFilesByDateApplicationStartProcessAndSequence)
{
    ASSERT_TRUE(Create());
    const fs::path first = Device().GetFileName();
    const std::string pattern = GetDirectory().string() + "/[0-3][0-9][A-Z][a-z][a-z]20[0-9][0-9]" +
                                "/*_[0-2][0-9][0-5][0-9][0-5][0-9]_" + std::to_string(getpid()) + "_*.log";
    EXPECT_EQ(fnmatch(pattern.c_str(), first.c_str(), FNM_PATHNAME), 0) << first << " is not " << pattern;
    EXPECT_TRUE(first.string().starts_with(Device().GenerateLogDirectoryFilenamePrefix() + "_")) << first;

    const std::string stem = first.string().substr(0, first.string().rfind('_') + 1);
    const int sequence = std::stoi(first.string().substr(stem.size()));
    const std::string next = Device().GenerateFileName();
    EXPECT_EQ(next, stem + std::to_string(sequence + 1) + ".log");
    EXPECT_FALSE(Create()) << "a file is open already";
    EXPECT_EQ(Device().GetFileName(), first);
    Device().CloseAndReopenLogFile();
    EXPECT_EQ(Device().GetFileName(), next);

    nxApplicationData::SetApplicationName("../../escaped\n/etc/passwd");
    EXPECT_EQ(fs::path(Device().GenerateFileName()).parent_path(), first.parent_path());
    nxApplicationData::SetApplicationName("");

    const auto excess = [](const fs::path& path, fs::perms allowed)
    { return fs::status(path).permissions() & ~allowed; };
    EXPECT_EQ(excess(first, fs::perms{0640}), fs::perms::none);
    EXPECT_EQ(excess(first.parent_path(), fs::perms{0750}), fs::perms::none);
}

TEST_F(nxFileLogDeviceTest, IsRegisteredFromCreateToDestroy)
{
    const std::string foretold = Device().GenerateFileName();
    EXPECT_TRUE(foretold.starts_with(GetDirectory().string() + "/")) << foretold;
    ASSERT_TRUE(Create());
    EXPECT_EQ(Device().GetFileName(), foretold);
    Manager().ImmediateWrite(Record("one"));
    const fs::path first = Device().GetFileName();
    NX_LOG(NX_LOG_LEVEL_INFO) << "queued";
    Device().Destroy();
    EXPECT_EQ(Device().GetFileName(), "");
    Manager().ImmediateWrite(Record("nowhere"));
    Device().CloseAndReopenLogFile();
    Device().Destroy();
    EXPECT_EQ(GetFiles().size(), 1U);
    ASSERT_TRUE(Create());
    EXPECT_EQ(Device().GetLineSink()->GetLineStyle(), (nxLogLineStyle{nxLogLineStyle::Full, true}));
    Manager().ImmediateWrite(Record("two"));
    const std::string before = nxReadFile(first), after = nxReadFile(Device().GetFileName());
    EXPECT_EQ(Count(before, "one") + Count(before, "] queued ["), 2U);
    EXPECT_EQ(after.substr(0, 28), "[INF][05Mar24 09:07:03.123.4");
    EXPECT_EQ(Count(after, "] two [tests/device:107]\r\n"), 1U);
    EXPECT_EQ(Count(before, "two") + Count(before + after, "nowhere"), 0U);
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
        for (std::size_t i = 0; i < 9; ++i)
        {
            const std::string line = LineOf(i, 38) + "\r\n";  // 41 bytes
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
            const Texts lines = LinesOf(files[i]);
            const std::string file = files[i].string(), next = files[i + 1].string();
            const std::size_t begin = i == 0 ? 0 : 1;
            ASSERT_EQ(lines.size(), begin + 4);
            for (std::size_t k = 0; k < 3; ++k)
                EXPECT_EQ(lines[begin + k], LineOf(3 * i + k, 38));
            EXPECT_EQ(Count(lines.back(), "Closing log file: " + file + " ["), 1U) << lines.back();
            const std::string opened = "Successfully opened log file: " + next + ", Previous log file: " + file + " [";
            EXPECT_EQ(Count(LinesOf(next).front(), opened), 1U);
        }
        EXPECT_EQ(LinesOf(files[3]).size(), 1U);
    }
}

TEST_F(nxFileLogDeviceTest, DoesNotRotateForItsOwnRecordsNorTellOfThemBelowItsLevel)
{
    ASSERT_TRUE(Create(10));  // far less than one of the device's records
    WriteBatch("0123456789012\r\n");
    EXPECT_EQ(GetFiles().size(), 2U);
    WriteBatch("12345678\r\n");  // exactly the limit
    EXPECT_EQ(GetFiles().size(), 2U);
    WriteBatch("\r\n");
    EXPECT_EQ(GetFiles().size(), 3U);
    const std::size_t lines = AllLines().size();

    const nxLogLevelEnum before = nxLogManager::GetLogLevel();
    nxLogManager::SetLogLevel(NX_LOG_LEVEL_WARNING);
    Device().CloseAndReopenLogFile();
    nxLogManager::SetLogLevel(before);
    EXPECT_EQ(GetFiles().size(), 4U);
    EXPECT_EQ(AllLines().size(), lines);
}

TEST_F(nxFileLogDeviceTest, SaysWhichDirectoryItUsesWithoutASetting)
{
    const fs::path before = fs::current_path();
    fs::current_path(GetRoot());
    unsetenv("QRX_LOG_DIRECTORY");
    const bool created = Create();
    const std::string name = Device().GetFileName();
    fs::current_path(before);
    EXPECT_TRUE(created);
    EXPECT_TRUE(name.starts_with("c:\\corvane\\log/")) << name;
    EXPECT_TRUE(fs::exists(GetRoot() / name));
    EXPECT_EQ(GetErrors(),
              "No Log Directory defined - use the QRX_LOG_DIRECTORY environment variable. "
              "Logging to c:\\corvane\\log\n");
}

TEST_F(nxFileLogDeviceTest, KeepsLinesInItsBufferUnlessTheyMatter)
{
    ASSERT_TRUE(Create());
    const std::string file = Device().GetFileName();
    WriteBatch("waits\r\n");
    EXPECT_EQ(LinesOf(file).size(), 0U);
    WriteBatch("warning\r\n", NX_LOG_LEVEL_WARNING);
    EXPECT_EQ(LinesOf(file), (Texts{"waits", "warning"}));
    WriteBatch("waits too\r\n", NX_LOG_LEVEL_PUBLIC_3);
    EXPECT_EQ(LinesOf(file).size(), 2U);
    Device().Flush();
    EXPECT_EQ(LinesOf(file).size(), 3U);
    std::string big;
    while (big.size() <= std::size_t{1} << 20)
        big += LineOf(0, 1'000) + "\r\n";
    WriteBatch("before\r\n");
    WriteBatch(big);
    EXPECT_EQ(Count(nxReadFile(file), "before\r\n0xxx"), 1U);
    const std::size_t written = LinesOf(file).size();
    const std::string half = LineOf(0, 600'000) + "\r\n";
    WriteBatch(half);
    WriteBatch(half);
    EXPECT_EQ(LinesOf(file).size(), written + 1) << "the first makes room for the second";
    Device().Destroy();

    Set("QRX_LOG_FORCE_FLUSH", "TRUE");
    ASSERT_TRUE(Create());
    for (std::size_t i = 1; i < 4; ++i)
    {
        WriteBatch("at once\r\n");
        EXPECT_EQ(LinesOf(Device().GetFileName()).size(), i);
    }
}

TEST_F(nxFileLogDeviceTest, BeginsANewFileOnAnotherDateOnlyIfAskedTo)
{
    for (const bool asked : {false, true})
    {
        SCOPED_TRACE(asked);
        fs::remove_all(GetDirectory());
        Set("QRX_LOG_RECREATE_ON_CHANGE_OF_DATE", asked ? "TRUE" : "FALSE");
        nxZoneOfProcess::Set("AAA-14");
        ASSERT_TRUE(Create());
        const long long now = std::time(nullptr);
        WriteBatch("today\r\n", NX_LOG_LEVEL_INFO, now);
        WriteBatch("of another year\r\n", NX_LOG_LEVEL_INFO, moment);
        EXPECT_EQ(GetFiles().size(), 1U);
        nxZoneOfProcess::Set("BBB+12");  // the day before, at every time of day
        WriteBatch("on another date\r\n", NX_LOG_LEVEL_INFO, now);
        WriteBatch("on the same date\r\n", NX_LOG_LEVEL_INFO, now);
        Device().Destroy();
        const std::vector<fs::path> files = GetFiles();
        ASSERT_EQ(files.size(), asked ? 2U : 1U);
        EXPECT_EQ(files.front().parent_path() != files.back().parent_path(), asked);
        EXPECT_EQ(Count(nxReadFile(files.back()), "on another date\r\non the same date\r\n"), 1U);
        const Texts all = AllLines();
        for (const char* const text : {"today", "of another year", "on another date", "on the same date"})
            EXPECT_EQ(std::count(all.begin(), all.end(), text), 1) << text;
    }
}

TEST_F(nxFileLogDeviceTest, MendsItselfWithoutFurtherRecords)
{
    Manager().SetTimeBetweenFlushes(0);
    nxWriteFile(GetDirectory(), "in the way");
    EXPECT_FALSE(Create());
    EXPECT_FALSE(Create()) << "still in the way";
    for (int i = 0; i < 5; ++i)
        NX_LOG(NX_LOG_LEVEL_INFO) << "early " << i;
    WaitUntilWritten();
    EXPECT_EQ(Device().GetFileName(), "");
    const std::string name = Device().GenerateFileName();
    std::string told = "Failed to create directory " + fs::path(name).parent_path().string() +
                       ", errno: " + std::to_string(ENOTDIR) + "\nFailed to create log file. Filename: " + name + "\n";
    told += told;  // once for each Create()
    EXPECT_EQ(GetErrors(), told);
    fs::remove(GetDirectory());
    EXPECT_TRUE(nxEventually([] { return Count(nxReadFile(Device().GetFileName()), "early") == 5; }));
    const std::string first = Device().GetFileName();
    const Texts early = LinesOf(first);
    for (std::size_t i = 0; i < early.size(); ++i)
        EXPECT_EQ(Count(early[i], "] early " + std::to_string(i) + " ["), 1U) << early[i];
    EXPECT_EQ(GetErrors(), told);

    fs::remove_all(GetDirectory());
    EXPECT_TRUE(nxEventually([] { return fs::exists(Device().GetFileName()); }));
    NX_LOG(NX_LOG_LEVEL_WARNING) << "here";
    WaitUntilWritten();
    const Texts lines = LinesOf(Device().GetFileName());
    ASSERT_EQ(lines.size(), 2U);
    EXPECT_EQ(Count(lines[0], ", Previous log file: " + first + " ["), 1U);
    EXPECT_EQ(Count(lines[1], "] here ["), 1U);
    EXPECT_EQ(GetErrors(), told + "Log file was removed. Filename: " + first + "\n");
}

TEST_F(nxFileLogDeviceTest, BeginsANewFileWhereOthersHaveTakenTheOldOneAway)
{
    const fs::path orders = GetRoot() / "orders", away = GetRoot() / "away";
    struct Row
    {
        const char* told;
        std::function<void(const std::string& file, int descriptor)> take;
        bool isLost;
    };
    const Row rows[] = {
        {"closed by other code of the process", [](const std::string&, int descriptor) { close(descriptor); }, true},
        {"closed by other code of the process",
         [&](const std::string&, int descriptor)
         {
             const int other = open(orders.c_str(), O_RDWR | O_CREAT, 0600);
             ASSERT_EQ(dup2(other, descriptor), descriptor);
             close(other);
             ASSERT_EQ(write(descriptor, "order", 5), 5);
         },
         true},
        {"renamed or exchanged", [&](const std::string& file, int) { fs::rename(file, away); }, false},
        {"renamed or exchanged",
         [&](const std::string& file, int)
         {
             fs::rename(file, away);
             nxWriteFile(file, "forged\r\n");
         },
         false}};
    std::string told;
    for (const Row& row : rows)
    {
        SCOPED_TRACE(testing::Message() << &row - rows);
        ASSERT_TRUE(Create());
        const std::string file = Device().GetFileName();
        const int descriptor = DescriptorOf(file);
        WriteBatch("before\r\n", NX_LOG_LEVEL_WARNING);
        WriteBatch("waits\r\n");
        row.take(file, descriptor);
        const std::string old = fs::exists(away) ? away.string() : file;
        // A closed one is noticed at once, a renamed one within a second.
        WriteBatch("during\r\n", NX_LOG_LEVEL_WARNING);
        EXPECT_TRUE(nxEventually(
            [&]
            {
                Device().Flush();
                return Device().GetFileName() != file;
            }));
        WriteBatch("after\r\n", NX_LOG_LEVEL_WARNING);
        const std::string all = nxReadFile(old) + nxReadFile(Device().GetFileName());
        for (const char* const line : {"before\r\n", "waits\r\n", "during\r\n", "after\r\n"})
            EXPECT_EQ(Count(all, line), 1U) << line;
        EXPECT_EQ(Count(all, "[WRN]"), row.isLost ? 1U : 0U);
        EXPECT_EQ(Count(all, "lines may be lost: " + file + " ["), row.isLost ? 1U : 0U);
        told += std::string("Log file was ") + row.told + ". Filename: " + file + "\n";
        EXPECT_EQ(GetErrors(), told);
        Device().Destroy();
        if (&row - rows == 1)
        {
            EXPECT_EQ(write(descriptor, "more", 4), 4) << "what is not ours stays open";
            close(descriptor);
        }
        fs::remove(away);
    }
    EXPECT_EQ(nxReadFile(orders), "ordermore");
}

TEST_F(nxFileLogDeviceTest, GoesOnWithTheOldFileWhereNoNewOneCanBeOpened)
{
    ASSERT_TRUE(Create(100));
    const std::string first = Device().GetFileName();
    // No file is opened where all users may exchange files.
    const fs::path day = fs::path(first).parent_path();
    fs::permissions(day, fs::perms::all);
    std::string expected;
    for (std::size_t i = 0; i < 50; ++i)
    {
        const std::string line = LineOf(i, 38) + "\r\n";
        WriteBatch(line, NX_LOG_LEVEL_WARNING);
        expected += line;
        ASSERT_EQ(nxReadFile(first), expected);
    }
    EXPECT_EQ(Device().GetFileName(), first);
    EXPECT_EQ(Count(GetErrors(), "Failed to create directory " + day.string() + ", errno: 1\n"), 1U);
    EXPECT_EQ(Count(GetErrors(), "\n"), 3U);
    fs::permissions(day, fs::perms::owner_all);
    EXPECT_TRUE(nxEventually(
        [&]
        {
            Device().Flush();
            return Device().GetFileName() != first;
        }));
    EXPECT_EQ(Count(nxReadFile(first), "Closing log file: "), 1U);
}

TEST_F(nxFileLogDeviceTest, WarnsWhereTheGroupMayExchangeFiles)
{
    fs::create_directory(GetDirectory());
    fs::permissions(GetDirectory(), fs::perms::owner_all | fs::perms::group_all);
    ASSERT_TRUE(Create());
    Device().CloseAndReopenLogFile();
    const std::string told = "] Others may remove or exchange log files. Directory: " + GetDirectory().string() + "/";
    const Texts all = AllLines();
    EXPECT_EQ(std::count_if(all.begin(), all.end(), [&](const std::string& line) { return Count(line, told) == 1; }),
              1);
}

// With a limit on file sizes that leaves no room and is lifted again.
TEST_F(nxFileLogDeviceTest, OutlivesTheFileSizeLimitTriesOnceMoreAtTheEndAndTellsWhatIsLost)
{
    enum End
    {
        Flushed,
        OnlyEnded,
        Blocked
    };
    for (const End end : {Flushed, OnlyEnded, Blocked})
    {
        SCOPED_TRACE(end);
        fs::remove_all(GetDirectory());
        fs::resize_file(GetRoot() / "errors", 0);  // for which the limit holds, too
        EXPECT_TRUE(nxInChild(
            [&]
            {
                signal(SIGXFSZ, SIG_DFL);
                if (end == Blocked)
                    nxWriteFile(GetDirectory(), "in the way");
                EXPECT_EQ(Create(), end != Blocked);
                rlimit limit{};
                getrlimit(RLIMIT_FSIZE, &limit);
                const rlimit small{1'000, limit.rlim_max};
                setrlimit(RLIMIT_FSIZE, &small);
                for (std::size_t i = 0; i < 30; ++i)
                    WriteBatch(LineOf(i, 97) + "\r\n", NX_LOG_LEVEL_WARNING);
                setrlimit(RLIMIT_FSIZE, &limit);
                sigset_t waiting;
                sigpending(&waiting);
                EXPECT_EQ(sigismember(&waiting, SIGXFSZ), 0);
                EXPECT_TRUE(end != Flushed || nxEventually(
                                                  []
                                                  {
                                                      Device().Flush();
                                                      return LinesOf(Device().GetFileName()).size() == 30;
                                                  }));
                std::exit(testing::Test::HasFailure() ? 1 : 0);
            }));
        const std::string errors = GetErrors();
        EXPECT_EQ(end == Blocked ? 30 : AllLines().size(), 30U);
        EXPECT_EQ(Count(errors, "Failed to write log file "), end == Blocked ? 0U : 1U);
        EXPECT_EQ(Count(errors, ", errno: " + std::to_string(EFBIG) + "\n"), end == Blocked ? 0U : 1U);
        EXPECT_EQ(errors.ends_with("\nLines lost while the log file could not be written: 30\n"), end == Blocked);
    }
    fs::remove(GetDirectory());
}

TEST_F(nxFileLogDeviceTest, LosesWholeLinesOnlyOnAFullDiskCountsThemAndMendsItself)
{
    fs::create_directory(GetDirectory());
    if (mount("none", GetDirectory().c_str(), "tmpfs", 0, "size=512k") != 0)
        GTEST_SKIP() << "may not mount a small file system";
    nxWriteFile(GetDirectory() / "filler_0", std::string(200'000, 'f'));
    const std::uint64_t lostBefore = Device().GetLostLines();
    ASSERT_TRUE(Create());
    const std::string file = Device().GetFileName();
    NX_LOG(NX_LOG_LEVEL_INFO) << "first";  // so that the log's thread is there
    WaitUntilWritten();
    fs::resize_file(file, 0);  // as a tool does that has copied it
    // More than the disk and the buffer hold.
    constexpr std::size_t lines = 20'000;
    for (std::size_t i = 0; i < lines; ++i)
        WriteBatch(LineOf(i, 93) + "\r\n", NX_LOG_LEVEL_WARNING);
    EXPECT_EQ(GetErrors(), "Failed to write log file " + file + ", errno: " + std::to_string(ENOSPC) + "\n");
    const std::size_t full = LinesOf(file).size();
    EXPECT_GT(full, 100U);
    EXPECT_GT(Device().GetLostLines(), lostBefore + 100U);

    // Room for what was kept. No thread reports anything more.
    mount("none", GetDirectory().c_str(), "tmpfs", MS_REMOUNT, "size=4m");
    Manager().SetTimeBetweenFlushes(0);
    EXPECT_TRUE(nxEventually([&] { return Count(nxReadFile(file), "Lines lost") == 1; }));
    const Texts all = LinesOf(file);
    const std::uint64_t lost = Device().GetLostLines() - lostBefore;
    EXPECT_GT(all.size(), full + 10);
    EXPECT_EQ(all.size() - 1 + lost, lines);
    EXPECT_EQ(all.back().substr(0, 5), "[WRN]");
    const std::string told = "] Lines lost while the log file could not be written: " + std::to_string(lost) + " [";
    EXPECT_EQ(Count(all.back(), told), 1U);
    for (std::size_t i = 0; i + 1 < all.size(); ++i)
        ASSERT_EQ(all[i], LineOf(i, 93));
    EXPECT_EQ(Count(GetErrors(), "\n"), 1U);
}

TEST_F(nxFileLogDeviceTest, NeverBecomesAStandardStream)
{
    EXPECT_TRUE(nxInChild(
        [&]
        {
            for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                close(stream);
            EXPECT_TRUE(Create());
            Device().Write(Record("line"));
            for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
                EXPECT_LT(write(stream, "stray", 5), 0);
            // Nor is what the program puts there an error stream, where there was seen to be none.
            unsetenv("QRX_LOG_DIRECTORY");
            fs::current_path(GetRoot());
            for (int attempt = 0; attempt < 2; ++attempt)
            {
                Device().Destroy();
                EXPECT_TRUE(Create());
                for (int stream = -1; stream < STDERR_FILENO;)
                    stream = open("data", O_RDWR | O_CREAT, 0600);
            }
        }));
    EXPECT_EQ(AllLines().size(), 1U);
    EXPECT_EQ(nxReadFile(GetRoot() / "data"), "");
}

// Also while the device is busy: with a file that a stuck disk does not open.
TEST_F(nxFileLogDeviceTest, GivesAForkedChildAFileOfItsOwn)
{
    if (nxUnderThreadSanitizer)
        GTEST_SKIP() << nxNoThreadsAfterFork;
    static nxStage stage;
    ASSERT_TRUE(Create());
    WriteBatch("parent 1\r\n");
    WriteBatch("parent waits\r\n");
    const std::string parents = Device().GetFileName();
    const auto inChild = []
    {
        EXPECT_EQ(Device().GetFileName(), "");
        const std::string foretold = Device().GenerateFileName();
        WriteBatch("child\r\n", NX_LOG_LEVEL_WARNING);
        const std::string own = Device().GetFileName();
        EXPECT_TRUE(own.ends_with("_" + std::to_string(getpid()) + "_1.log")) << own;
        EXPECT_EQ(own, foretold);
        EXPECT_EQ(LinesOf(own), Texts{"child"});
    };
    EXPECT_TRUE(nxInChild(inChild));
    WriteBatch("parent 2\r\n", NX_LOG_LEVEL_WARNING);
    EXPECT_EQ(LinesOf(parents), (Texts{"parent 1", "parent waits", "parent 2"}));
    {
        const nxJoinedThread stuck(
            []
            {
                nxSystemCallFault::Options options;
                options.meanwhile = []
                {
                    stage.Reach(1);
                    stage.WaitFor(2);
                };
                const nxSystemCallFault fault("openat", EIO, options);
                Device().CloseAndReopenLogFile();
            });
        stage.WaitFor(1);
        EXPECT_TRUE(nxInChild(inChild));
        stage.Reach(2);
    }
    WriteBatch("parent\r\n", NX_LOG_LEVEL_WARNING);
    EXPECT_EQ(LinesOf(Device().GetFileName()).back(), "parent");
}
