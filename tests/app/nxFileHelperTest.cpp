// SPDX-License-Identifier: Apache-2.0
#include "core/app/nxFileHelper.h"

#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <memory>

#include "core/app/nxAtomicFile.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxScratchDirectory.h"
#include "tests/support/nxSystemCallFault.h"
#include "tests/support/nxTest.h"

namespace
{
namespace fs = std::filesystem;
constexpr nxEnumValue nothing = NX_ENUM_UNDEFINED;
using Durability = nxFileHelper::Durability;

class nxFileHelperTest : public testing::Test
{
protected:
    std::string Path(const std::string& name) const { return (_scratch.GetPath() / name).string(); }

    // Makes what the rows need: files, links, a pipe and a directory.
    void MakeFiles() const
    {
        nxWriteFile(Path("file"), "12345");
        fs::create_directory(Path("directory"));
        ASSERT_EQ(mkfifo(Path("pipe").c_str(), 0600), 0);
        fs::create_symlink("file", Path("link"));
        fs::create_symlink("link", Path("link to link"));
        fs::create_symlink("loop", Path("loop"));
        fs::create_symlink("directory/made", Path("dangling"));
    }

    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        EXPECT_EQ(nxFileHelper::ListDirectory(Path(""), names), nothing);
        return names;
    }

private:
    const nxScratchDirectory _scratch;
};

nxErrorEnum Replace(const std::string& path, std::string_view content, int* error = nullptr)
{
    return nxFileHelper::ReplaceFile(path, content, Durability::Durable, error);
}

mode_t ModeOf(const std::string& path)
{
    struct stat status = {};
    return stat(path.c_str(), &status) == 0 ? status.st_mode & 07777 : 0;
}

// A text that tells whether it is whole: its first half is there once more.
std::string MakeWhole(int number, std::size_t size)
{
    const std::string half(size, static_cast<char>('a' + number % 26));
    return half + half;
}
bool IsWhole(const std::string& text)
{
    return !text.empty() && text.size() % 2 == 0 && text == MakeWhole(text[0] - 'a', text.size() / 2);
}
}  // namespace

TEST_F(nxFileHelperTest, TellsWhatIsThere)
{
    MakeFiles();
    const std::string nul("file\0", 5);
    const struct
    {
        std::string name;
        nxEnumValue read;
        nxEnumValue replace;
        nxEnumValue create;
    } rows[] = {
        {"file", nothing, nothing, NX_ERR_DUPLICATE_MATCH},
        {"link", nothing, nothing, NX_ERR_DUPLICATE_MATCH},
        {"link to link", nothing, NX_ERR_INVALID_PARAMETER, NX_ERR_DUPLICATE_MATCH},
        {"loop", NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER, NX_ERR_DUPLICATE_MATCH},
        {"dangling", NX_ERR_NOT_FOUND, nothing, NX_ERR_DUPLICATE_MATCH},
        {"pipe", NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER, NX_ERR_DUPLICATE_MATCH},
        {"directory", NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER, NX_ERR_DUPLICATE_MATCH},
        {"directory/", NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER},
        {"none/file", NX_ERR_NOT_FOUND, NX_ERR_NOT_FOUND, NX_ERR_NOT_FOUND},
        {"file/file", NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER},
        {nul, NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER, NX_ERR_INVALID_PARAMETER},
        {std::string(300, 'x'), NX_ERR_FAILED_TO_OPEN_FILE, NX_ERR_FAILED_TO_OPEN_FILE, NX_ERR_FAILED_TO_OPEN_FILE},
    };
    for (const auto& row : rows)
    {
        SCOPED_TRACE(row.name);
        std::string text = "old";
        EXPECT_EQ(nxFileHelper::ReadFile(Path("") + row.name, 5, text), row.read);
        EXPECT_EQ(text, row.read == nothing ? "12345" : "old");
        EXPECT_EQ(nxFileHelper::CreateFile(Path("") + row.name, "new"), row.create);
        EXPECT_EQ(Replace(Path("") + row.name, "12345"), row.replace);
    }
    EXPECT_EQ(Names(),
              (std::vector<std::string>{"dangling", "directory", "file", "link", "link to link", "loop", "pipe"}));
    EXPECT_EQ(nxReadFile(Path("directory/made")), "12345");
    EXPECT_TRUE(fs::is_symlink(Path("link")));
}

TEST_F(nxFileHelperTest, TakesNoMoreThanTheLimitAndReadsWhatHasGrown)
{
    for (const std::size_t size : {0U, 1U, 4096U, 100'000U})
    {
        const std::string content(size, 'x');
        std::string text;
        int error = 0;
        nxWriteFile(Path("file"), content);
        EXPECT_EQ(nxFileHelper::ReadFile(Path("file"), size, text, &error), nothing);
        EXPECT_EQ(text, content);
        if (size != 0)
        {
            EXPECT_EQ(nxFileHelper::ReadFile(Path("file"), size - 1, text, &error), NX_ERR_VALUE_OUT_OF_RANGE);
            EXPECT_EQ(error, EFBIG);
        }
    }
    // The size of such a file is not known before it is read to its end, as that of one that grows.
    std::string text;
    EXPECT_EQ(nxFileHelper::ReadFile("/proc/self/limits", SIZE_MAX, text), nothing);
    EXPECT_GT(text.size(), 100U);
    EXPECT_EQ(nxFileHelper::ReadFile("/proc/self/limits", 100, text), NX_ERR_VALUE_OUT_OF_RANGE);
}

TEST_F(nxFileHelperTest, KeepsTheRightsOfAFileAndGivesAFewToANewOne)
{
    const mode_t before = umask(0);
    EXPECT_EQ(Replace(Path("file"), "1"), nothing);
    EXPECT_EQ(ModeOf(Path("file")), 0640U);
    ASSERT_EQ(chmod(Path("file").c_str(), 04604), 0);
    EXPECT_EQ(Replace(Path("file"), "2"), nothing);
    EXPECT_EQ(ModeOf(Path("file")), 0604U);
    std::string path;
    EXPECT_EQ(nxFileHelper::CreateTemporaryFile(Path(""), path), nothing);
    EXPECT_EQ(ModeOf(path), 0600U);
    umask(before);
    unsigned long long size = 7;
    EXPECT_EQ(nxFileHelper::GetSize(path, size), nothing);
    EXPECT_EQ(size, 0U);
    EXPECT_EQ(nxFileHelper::Rename(path, Path("file")), nothing);
    EXPECT_EQ(nxFileHelper::CreateDirectories(Path("a/b")), nothing);
    EXPECT_EQ(nxFileHelper::CreateDirectories(Path("file/b")), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxFileHelper::Rename(Path("file"), Path("a/b/file")), nothing);
    EXPECT_EQ(nxFileHelper::Rename(Path("none"), Path("a/b/file")), NX_ERR_NOT_FOUND);
    EXPECT_TRUE(nxFileHelper::Exists(Path("a/b/file")));
    EXPECT_EQ(nxFileHelper::Remove(Path("a")), NX_ERR_INVALID_PARAMETER);
    EXPECT_EQ(nxFileHelper::Remove(Path("a/b/file")), nothing);
    EXPECT_EQ(nxFileHelper::Remove(Path("a/b/file")), NX_ERR_NOT_FOUND);
    EXPECT_FALSE(nxFileHelper::Exists(Path("a/b/file")));
}

// Each call fails in turn. The old content stays, nothing is left, and interrupted calls go on.
TEST_F(nxFileHelperTest, LeavesTheOldFileWhateverFails)
{
    const struct
    {
        const char* function;
        unsigned calls;  // made by one replacement, which are all that there are
        nxEnumValue code;
    } rows[] = {
        {"open", 1, NX_ERR_FAILED_TO_OPEN_FILE},   {"openat", 1, NX_ERR_FAILED_TO_OPEN_FILE},
        {"fchmod", 1, NX_ERR_FAILED_TO_OPEN_FILE}, {"write", 3, NX_ERR_FILE_WRITE_ERR},
        {"fsync", 2, NX_ERR_FILE_WRITE_ERR},       {"linkat", 1, NX_ERR_FILE_WRITE_ERR},
        {"renameat", 1, NX_ERR_FILE_WRITE_ERR},
    };
    const std::string large(100'000, 'x');
    const auto replace = [&](int& error)
    {
        nxAtomicFile file;
        nxErrorEnum result = file.Open(Path("file"), &error);
        for (int i = 0; i < 3 && result.IsOK(); ++i)
            result = file.Append(i == 0 ? std::string_view("new") : std::string_view(large), &error);
        return result.IsOK() ? file.Commit(Durability::Durable, &error) : result;
    };
    for (const auto& row : rows)
    {
        for (unsigned call = 0; call <= row.calls; ++call)
        {
            SCOPED_TRACE(std::string(row.function) + " " + std::to_string(call));
            nxWriteFile(Path("file"), "old");
            int error = -1;
            {
                const nxSystemCallFault fault(row.function, ENOSPC, {.skip = call});
                EXPECT_EQ(replace(error), call < row.calls ? row.code : nothing);
            }
            EXPECT_EQ(error, call < row.calls ? ENOSPC : 0);
            // The last call tells the disk the change of the directory, which has been made.
            const bool isMade = call == row.calls || (row.function == std::string("fsync") && call == 1);
            EXPECT_EQ(nxReadFile(Path("file")), isMade ? "new" + large + large : "old");
            EXPECT_EQ(Names(), std::vector<std::string>{"file"});
        }
    }
    for (const char* const function : {"open", "openat", "write", "fsync"})
    {
        const nxSystemCallFault fault(function, EINTR, {.times = 3});
        EXPECT_EQ(Replace(Path("file"), "interrupted"), nothing);
        EXPECT_EQ(fault.GetHits(), 3U) << function;
    }
}

TEST_F(nxFileHelperTest, DoesWithoutUnnamedFilesAndGivesUpWhatIsNotCommitted)
{
    for (const char* const function : {"openat", "access"})
    {
        const nxSystemCallFault fault(function, EOPNOTSUPP, {.times = 1});
        nxAtomicFile file;
        EXPECT_EQ(file.Append(""), NX_ERR_NOT_INITIALISED);
        ASSERT_EQ(file.Open(Path("file")), nothing);
        EXPECT_EQ(Names().back().substr(0, 8), ".nxcore-");
        EXPECT_TRUE(nxInChild([&] { file = nxAtomicFile(); }));
        EXPECT_EQ(Names().size(), 1U) << "a child removes nothing";
        file = nxAtomicFile();
        EXPECT_EQ(Names().size(), 0U);
    }
    for (const char* const content : {"new", "replaced"})
    {
        const nxSystemCallFault fault("openat", EOPNOTSUPP);
        EXPECT_EQ(Replace(Path("file"), content), nothing);
        EXPECT_EQ(nxReadFile(Path("file")), content);
        EXPECT_EQ(Names(), std::vector<std::string>{"file"});
    }
}

TEST_F(nxFileHelperTest, ShowsReadersOneWholeVersion)
{
    constexpr int writers = 100;
    std::vector<std::unique_ptr<nxChildProcess>> processes;
    ASSERT_EQ(Replace(Path("file"), MakeWhole(0, 1)), nothing);
    nxSharedMemory<std::atomic<int>> left;
    left->store(writers);
    for (int i = 0; i < writers; ++i)
        processes.push_back(std::make_unique<nxChildProcess>(
            [&, i]
            {
                for (std::size_t size = 20'000; size < 20'003; ++size)
                    EXPECT_EQ(nxFileHelper::ReplaceFile(Path("file"), MakeWhole(i, size), Durability::Atomic), nothing);
                --*left;
            }));
    std::string text;
    do
    {
        ASSERT_EQ(nxFileHelper::ReadFile(Path("file"), 100'000, text), nothing);
        ASSERT_TRUE(IsWhole(text)) << text.size();
    } while (*left > 0);
    for (auto& process : processes)
        EXPECT_TRUE(process->Succeeds());
    EXPECT_GE(text.size(), 40'000U);
    EXPECT_EQ(Names(), std::vector<std::string>{"file"});
}
