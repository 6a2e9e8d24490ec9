// Neighbours on the same machine: a second user who plants files and links where the library will look, and looks where
// it writes; names, messages and settings that are made to mislead those who read the log.

#include <dirent.h>
#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <thread>
#include <vector>

#include "core/nxCore.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxPrivateMemory.h"

namespace
{
namespace fs = std::filesystem;

constexpr unsigned NeighboursID = 65'534;
constexpr const char* Intact = "the neighbour's own";

// A process of another user, who has no rights over ours.
template <class Body>
bool AsNeighbour(Body body)
{
    nxChildProcess neighbour(
        [&]
        {
            ASSERT_TRUE(setgroups(0, nullptr) == 0 && setgid(NeighboursID) == 0 && setuid(NeighboursID) == 0);
            umask(0);
            body();
        });
    return neighbour.Succeeds();
}

// A process of the user who uses the library, as it comes from the shell.
template <class Body>
bool AsVictim(Body body)
{
    nxChildProcess victim(body);
    return victim.Succeeds();
}

void WriteFile(const fs::path& path, const std::string& content) { std::ofstream(path, std::ios::binary) << content; }

std::string ReadFile(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::vector<fs::path> FilesBelow(const fs::path& directory)
{
    std::vector<fs::path> found;
    for (const auto& entry : fs::recursive_directory_iterator(directory))
    {
        if (entry.is_regular_file() && !entry.is_symlink())
            found.push_back(entry.path());
    }
    return found;
}

// A directory that everybody may write to, as /tmp is, gone afterwards.
class PublicDirectory
{
public:
    PublicDirectory()
    {
        std::string name = (fs::temp_directory_path() / "nxhostileXXXXXX").string();
        _path = mkdtemp(name.data());
        fs::permissions(_path, fs::perms::all | fs::perms::sticky_bit);
    }
    ~PublicDirectory() { fs::remove_all(_path); }
    PublicDirectory(const PublicDirectory&) = delete;
    PublicDirectory& operator=(const PublicDirectory&) = delete;

    const fs::path& GetPath() const { return _path; }

private:
    fs::path _path;
};

struct Meeting
{
    std::atomic<int> stage{0};
    char name[512]{};

    void WaitFor(int wanted) const
    {
        while (stage < wanted)
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
};
}  // namespace

TEST(hostileNeighbours, NamedObjectsAreOutOfAnotherUsersReach)
{
    if (!nxInNewProcess())
        return;
    if (geteuid() != 0)
        GTEST_SKIP() << "a second user: only root can become one";
    if (!nxPrivateMemory::Mount())
        GTEST_SKIP() << "no private /dev/shm here";
    nxSharedMemory<Meeting> meeting;
    nxChildProcess victim(
        [&]
        {
            nxWindowsSemaphore semaphore("name", 1, 3);
            meeting->stage = 1;
            meeting->WaitFor(2);
            semaphore.Post();
            EXPECT_TRUE(semaphore.TimedWait(0).IsOK() && semaphore.TimedWait(0).IsOK());
            EXPECT_EQ(semaphore.TimedWait(0), NX_ERR_THR_TIMEDOUT) << "the neighbour's counts";
        });
    meeting->WaitFor(1);
    const fs::path directory = fs::directory_iterator("/dev/shm")->path();
    const fs::path file = fs::directory_iterator(directory)->path();
    EXPECT_TRUE(AsNeighbour(
        [&]
        {
            EXPECT_EQ(open(directory.c_str(), O_RDONLY), -1);
            EXPECT_EQ(open(file.c_str(), O_RDWR), -1);
            EXPECT_EQ(errno, EACCES);
            EXPECT_NE(rename(directory.c_str(), "/dev/shm/away"), 0);
            nxWindowsSemaphore own("name", 2, 9);
            EXPECT_FALSE(own.IsNull());
            for (int i = 0; i < 2; ++i)
                EXPECT_TRUE(own.TimedWait(0).IsOK()) << "of the neighbour's own making";
            own.Post();
        }));
    meeting->stage = 2;
    EXPECT_TRUE(victim.Succeeds());

    const std::string tail = file.filename();
    const struct
    {
        const char* what;
        std::function<void()> plant;  // as the neighbour
    } rows[] = {
        {"a closed directory", [&] { mkdir(directory.c_str(), 0700); }},
        {"an open directory with a file",
         [&]
         {
             mkdir(directory.c_str(), 0777);
             WriteFile(directory / tail, Intact);
         }},
        {"a link to a directory of the neighbour's",
         [&]
         {
             mkdir("/dev/shm/neighbours", 0777);
             WriteFile(fs::path("/dev/shm/neighbours") / tail, Intact);
             fs::create_symlink("/dev/shm/neighbours", directory);
         }},
        {"a link to a directory of ours", [&] { fs::create_symlink("/dev/shm/ours", directory); }},
        {"a link to nowhere", [&] { fs::create_symlink("/dev/shm/nowhere", directory); }},
        {"a pipe", [&] { mkfifo(directory.c_str(), 0666); }},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.what);
        ASSERT_TRUE(nxPrivateMemory::Mount());
        ASSERT_EQ(mkdir("/dev/shm/ours", 0700), 0);
        ASSERT_TRUE(AsNeighbour(row.plant));
        EXPECT_TRUE(AsVictim([] { EXPECT_TRUE(nxWindowsMutex("name").IsNull()); }));
        for (const fs::path& planted : FilesBelow("/dev/shm"))
            EXPECT_EQ(ReadFile(planted), Intact) << planted;
        EXPECT_TRUE(fs::is_empty("/dev/shm/ours"));
        EXPECT_FALSE(fs::exists("/dev/shm/nowhere"));
    }
}

TEST(hostileNeighbours, LogFilesAreNewAndNobodyElsesToRead)
{
    if (!nxInNewProcess())
        return;
    if (geteuid() != 0)
        GTEST_SKIP() << "a second user: only root can become one";
    const PublicDirectory place;
    const fs::path target = place.GetPath() / "target";
    setenv("QRX_LOG_DIRECTORY", (place.GetPath() / "log").c_str(), 1);
    nxSharedMemory<Meeting> meeting;
    nxFileLogDevice* device = nullptr;
    const nxValueWrapper<unsigned long long> noLimit;
    // The neighbour has made the directories, and can plant what he likes in them.
    const std::string today = nxDateTime(nxTimeStamp().GetSeconds(), 0).GetAsString("%d%b%Y");
    ASSERT_TRUE(AsNeighbour(
        [&]
        {
            mkdir((place.GetPath() / "log").c_str(), 0777);
            mkdir((place.GetPath() / "log" / today).c_str(), 0777);
        }));
    nxChildProcess victim(
        [&]
        {
            device = &nxFileLogDevice::GetInstance();
            EXPECT_TRUE(device->Create(noLimit));
            device->Destroy();
            device->GenerateFileName().copy(meeting->name, sizeof meeting->name - 1);
            meeting->stage = 1;
            meeting->WaitFor(2);
            EXPECT_TRUE(device->Create(noLimit));
            NX_LOG(NX_LOG_LEVEL_WARNING) << "confidential";
            const std::string name = device->GetFileName();
            device->Destroy();
            std::memset(meeting->name, 0, sizeof meeting->name);
            name.copy(meeting->name, sizeof meeting->name - 1);
            meeting->stage = 3;
        });
    meeting->WaitFor(1);
    std::string planted = meeting->name;
    ASSERT_TRUE(AsNeighbour(
        [&]
        {
            WriteFile(target, Intact);
            fs::create_symlink(target, planted);
            planted.replace(planted.rfind("_2.log"), std::string::npos, "_3.log");
            WriteFile(planted, Intact);
        }));
    meeting->stage = 2;
    ASSERT_TRUE(victim.Succeeds());
    const fs::path written = meeting->name;
    EXPECT_EQ(written.filename().string().substr(written.filename().string().rfind('_')), "_4.log");
    EXPECT_NE(ReadFile(written).find("confidential"), std::string::npos);
    EXPECT_EQ(ReadFile(target), Intact);
    planted.replace(planted.rfind("_2.log"), std::string::npos, "_3.log");
    EXPECT_EQ(ReadFile(planted), Intact);
    EXPECT_TRUE(AsNeighbour(
        [&]
        {
            EXPECT_EQ(open(written.c_str(), O_RDONLY), -1);
            EXPECT_EQ(open(written.c_str(), O_WRONLY), -1);
        }));
}

TEST(hostileNeighbours, NobodyForgesALineOrLeavesTheDirectoryOrReadsASecret)
{
    if (!nxInNewProcess())
        return;
    const PublicDirectory place;
    const fs::path log = place.GetPath() / "log";
    setenv("QRX_LOG_DIRECTORY", log.c_str(), 1);
    std::vector<std::string> settings{"DB_PASSWORD=hunter2", "MY_SECRET_KEY=hunter2", "api_token=hunter2",
                                      "NOTE=two\r\n[ERR] lines \x1b[2J"};
    std::vector<char*> environment;
    for (std::string& setting : settings)
        environment.push_back(setting.data());
    environment.push_back(nullptr);
    std::vector<std::string> words{"program", "-password", "hunter2", "-user", "a\nb"};
    std::vector<char*> arguments;
    for (std::string& word : words)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    std::string everyByte;
    for (int byte = 0; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);

    nxApplicationData::SetApplicationName("../../escaped\n/etc/passwd");
    ASSERT_TRUE(nxFileLogDevice::GetInstance().Create(nxValueWrapper<unsigned long long>()));
    NX_LOG(NX_LOG_LEVEL_INFO) << "first\r\n[ERR][05Mar24 09:07:03.123.456][0] forged [core/trunk/nxMutex:107]";
    NX_LOG(NX_LOG_LEVEL_INFO) << everyByte;
    nxCmdLineArgs::GetInstance().Initialise(arguments.data(), environment.data());
    nxCmdLineArgs::GetInstance().Dump(NX_LOG_LEVEL_INFO);
    nxFileLogDevice::GetInstance().Destroy();

    const std::vector<fs::path> files = FilesBelow(place.GetPath());
    ASSERT_EQ(files.size(), 1U);
    EXPECT_EQ(files[0].parent_path().parent_path(), log);
    const std::string text = ReadFile(files[0]);
    EXPECT_EQ(text.find("hunter2"), std::string::npos);
    EXPECT_NE(text.find("DB_PASSWORD = ***"), std::string::npos);
    std::size_t lines = 0;
    for (std::size_t begin = 0; begin < text.size(); ++lines)
    {
        const std::size_t end = text.find("\r\n", begin);
        ASSERT_NE(end, std::string::npos);
        const std::string line = text.substr(begin, end - begin);
        EXPECT_EQ(line.substr(0, 5), "[INF]") << line;
        EXPECT_TRUE(std::none_of(line.begin(), line.end(),
                                 [](char c) { return (c >= 0 && c < ' ' && c != '\t') || c == '\x7f'; }))
            << line;
        begin = end + 2;
    }
    EXPECT_EQ(lines, 2U + 2U + 2U + 4U) << "two messages; two headings, two options, four variables";
}
