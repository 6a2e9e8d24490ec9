// SPDX-License-Identifier: Apache-2.0
// Neighbours on the same machine: a second user who plants files and links where the library looks, reads what it writes,
// and starts a program of ours with settings of his own.

#include <grp.h>
#include <sys/auxv.h>
#include <sys/statvfs.h>

#include "core/nxCore.h"
#include "core/platform/nxTimeZone.h"
#include "tests/support/nxPrivateMemory.h"
#include "tests/support/nxSystemTest.h"

namespace
{
namespace fs = std::filesystem;

constexpr unsigned NeighboursID = 65'534;
constexpr const char* Intact = "the neighbour's own";

// A process of another user without rights over ours.
template <class Body>
bool AsNeighbour(Body body)
{
    return nxInChild(
        [&]
        {
            ASSERT_TRUE(setgroups(0, nullptr) == 0 && setgid(NeighboursID) == 0 && setuid(NeighboursID) == 0);
            umask(0);
            body();
        });
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

// A directory that all users may write to, as /tmp is.
class PublicDirectory : public nxScratchDirectory
{
public:
    PublicDirectory() { fs::permissions(GetPath(), fs::perms::all | fs::perms::sticky_bit); }
};
}  // namespace

TEST(hostileNeighbours, LogFilesAreNewAndNotForOthersToRead)
{
    if (!nxMayBecome(NeighboursID))
        GTEST_SKIP() << "a second user: only root can become one, where there is one";
    if (!nxInNewProcess())
        return;
    const PublicDirectory place;
    const fs::path log = place.GetPath() / "log";
    const fs::path target = place.GetPath() / "target";
    setenv("QRX_LOG_DIRECTORY", log.c_str(), 1);
    const std::string today = nxDateTime(nxTimeStamp().GetSeconds(), 0).GetAsString("%d%b%Y");
    nxFileLogDevice& device = nxFileLogDevice::GetInstance();
    // The neighbour has made the directories and can plant anything in them.
    ASSERT_TRUE(AsNeighbour(
        [&]
        {
            fs::create_directories(log / today);
            nxWriteFile(target, Intact);
        }));
    EXPECT_FALSE(device.Create(nxValueWrapper<unsigned long long>()));
    // Nor may it be a link of his.
    fs::create_directory(place.GetPath() / "private");
    ASSERT_TRUE(AsNeighbour(
        [&]
        {
            fs::remove(log / today);
            fs::create_directory_symlink(place.GetPath() / "private", log / today);
        }));
    EXPECT_FALSE(device.Create(nxValueWrapper<unsigned long long>()));
    EXPECT_EQ(FilesBelow(place.GetPath()).size(), 1U) << "his own";
    // One of ours that he may write to, because of its group.
    ASSERT_TRUE(AsNeighbour([&] { fs::remove(log / today); }));
    fs::create_directory(log / today);
    ASSERT_EQ(chown((log / today).c_str(), geteuid(), NeighboursID), 0);
    fs::permissions(log / today, fs::perms{0770});
    ASSERT_TRUE(device.Create(nxValueWrapper<unsigned long long>()));
    const std::string link = device.GenerateFileName();
    const std::string stem = link.substr(0, link.rfind('_') + 1);
    const std::string file = stem + "3.log";
    ASSERT_TRUE(AsNeighbour(
        [&]
        {
            fs::create_symlink(target, link);
            nxWriteFile(file, Intact);
        }));
    device.CloseAndReopenLogFile();
    NX_LOG(NX_LOG_LEVEL_WARNING) << "confidential";
    const std::string written = device.GetFileName();
    device.Destroy();
    EXPECT_EQ(written, stem + "4.log");
    EXPECT_NE(nxReadFile(written).find("confidential"), std::string::npos);
    EXPECT_EQ(nxReadFile(target), Intact);
    EXPECT_EQ(nxReadFile(file), Intact);
    EXPECT_TRUE(AsNeighbour(
        [&]
        {
            EXPECT_EQ(open(written.c_str(), O_RDONLY), -1);
            EXPECT_EQ(open(written.c_str(), O_WRONLY), -1);
        }));
}

TEST(hostileNeighbours, AProgramWithRightsOfItsOwnHeedsNoSettingOfItsCallers)
{
    if (std::getenv("NX_TEST_IN_NEW_PROCESS") != nullptr)
    {
        if (getauxval(AT_SECURE) == 0)
            return;
        char scratch[16'384];
        EXPECT_FALSE(nxTimeZone().Load(std::getenv("TZ"), scratch)) << "the C library opens no such file either";
        EXPECT_FALSE(nxWindowsMutex("name").IsNull());
        ASSERT_TRUE(nxLogSetUp());
        const std::string name = nxFileLogDevice::GetInstance().GetFileName();
        EXPECT_TRUE(name.starts_with(nxFileLogDevice::DefaultDirectory)) << name;
        EXPECT_FALSE(nxLogManager::ShouldLog(NX_LOG_LEVEL_DEBUG));
        EXPECT_EQ(fs::status(name).permissions() & ~fs::perms{0600}, fs::perms::none);
        EXPECT_EQ(fs::status(fs::path(name).parent_path()).permissions() & ~fs::perms{0700}, fs::perms::none);
        return;
    }
    const PublicDirectory place;
    const fs::path program = place.GetPath() / "program";
    fs::copy_file(fs::read_symlink("/proc/self/exe"), program);
    struct statvfs mounted = {};
    if (!nxMayBecome(NeighboursID) || statvfs(program.c_str(), &mounted) != 0 || (mounted.f_flag & ST_NOSUID) != 0)
        GTEST_SKIP() << "a set-user-ID program: only root can make one, and not on every file system";
    chmod(program.c_str(), 04755);
    EXPECT_TRUE(AsNeighbour(
        [&]
        {
            ASSERT_EQ(chdir(place.GetPath().c_str()), 0);
            setenv("QRX_LOG_DIRECTORY", (place.GetPath() / "planted").c_str(), 1);
            setenv("QRX_LOG_LEVEL", "DBG", 1);
            setenv("NX_SHARED_DIRECTORY", place.GetPath().c_str(), 1);
            setenv("TZ", "/usr/share/zoneinfo/UTC", 1);
            EXPECT_FALSE(nxInNewProcess(program.c_str()));
        }));
    EXPECT_FALSE(fs::exists(place.GetPath() / "planted"));
    EXPECT_EQ(FilesBelow(place.GetPath()).size(), 2U) << "the program and its log file";
}
