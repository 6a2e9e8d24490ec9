// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxFile.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "core/platform/nxDirectory.h"
#include "tests/support/nxScratchDirectory.h"
#include "tests/support/nxTest.h"

namespace
{
namespace fs = std::filesystem;

class nxFileTest : public testing::Test
{
protected:
    std::string Path(const char* name) const { return (_scratch.GetPath() / name).string(); }

private:
    const nxScratchDirectory _scratch;
};

bool IsPending(int signal)
{
    sigset_t pending;
    sigpending(&pending);
    return sigismember(&pending, signal) == 1;
}
}  // namespace

TEST_F(nxFileTest, CreatesFilesThatDoNotExist)
{
    nxFile file;
    nxDirectory directory;
    ASSERT_EQ(directory.Open(Path("")), 0);
    std::size_t written = 0;
    std::uint64_t size = 0;
    ASSERT_EQ(file.CreateNew(directory, Path("new")), 0);
    ASSERT_EQ(file.Write("0123456789", 10, written), 0);
    EXPECT_EQ(file.CutBack(6), 0);
    ASSERT_EQ(file.Write("x", 1, written), 0);
    EXPECT_EQ(nxReadFile(Path("new")), "0123x");
    EXPECT_EQ(file.Look(size), nxFile::Fate::Sound);
    EXPECT_EQ(size, 5U);
    // Another program shortens it, and less is left than is to be cut off.
    fs::resize_file(Path("new"), 1);
    EXPECT_EQ(file.CutBack(6), 0);
    EXPECT_EQ(nxReadFile(Path("new")), "");
    fs::rename(Path("new"), Path("other"));
    EXPECT_EQ(file.Look(size), nxFile::Fate::Renamed);
    fs::remove(Path("other"));
    EXPECT_EQ(file.Look(size), nxFile::Fate::Removed);

    nxWriteFile(Path("old"), "old");
    fs::create_symlink(Path("nowhere"), Path("link"));
    for (const char* name : {"old", "link"})
        EXPECT_EQ(file.CreateNew(directory, Path(name)), EEXIST);
    EXPECT_TRUE(file.IsOpen()) << "the one before";
    EXPECT_FALSE(fs::exists(Path("nowhere")));
    EXPECT_EQ(nxReadFile(Path("old")), "old");
}

TEST_F(nxFileTest, TurnsTheSignalsOfFailedWritesIntoErrors)
{
    signal(SIGPIPE, SIG_DFL);
    std::size_t written = 7;
    int ends[2];
    ASSERT_EQ(pipe(ends), 0);
    close(ends[0]);
    EXPECT_EQ(nxFile::WriteTo(ends[1], "text", 4, written), EPIPE);
    EXPECT_EQ(written, 0U);
    EXPECT_FALSE(IsPending(SIGPIPE));

    // A signal that was pending before belongs to others.
    sigset_t pipeSignal, before;
    sigemptyset(&pipeSignal);
    sigaddset(&pipeSignal, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipeSignal, &before);
    raise(SIGPIPE);
    EXPECT_EQ(nxFile::WriteTo(ends[1], "text", 4, written), EPIPE);
    EXPECT_TRUE(IsPending(SIGPIPE));
    int received = 0;
    sigwait(&pipeSignal, &received);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    close(ends[1]);
    EXPECT_EQ(nxFile::WriteTo(-1, "text", 4, written), EBADF);
}

TEST_F(nxFileTest, ReadsRegularFilesThatFit)
{
    nxWriteFile(Path("seven"), "1234567");
    ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
    char content[8] = "";
    std::size_t size = 99;
    ASSERT_EQ(nxFile::ReadAll(Path("seven").c_str(), content, size), 0);
    EXPECT_EQ(std::string(content, size), "1234567");
    size = 99;
    EXPECT_EQ(nxFile::ReadAll(Path("seven").c_str(), std::span(content, 6), size), EFBIG);
    EXPECT_EQ(nxFile::ReadAll(Path("fifo").c_str(), content, size), EINVAL);
    EXPECT_EQ(nxFile::ReadAll(Path("none").c_str(), content, size), ENOENT);
    EXPECT_EQ(size, 99U);
}

TEST_F(nxFileTest, OpensDirectoriesStepByStepWhereOthersMayHaveBeen)
{
    nxDirectory directory;
    for (const char* path : {"a/b//c", "a/b/c"})
        EXPECT_EQ(directory.Open(Path(path)), 0);
    EXPECT_EQ(fs::status(Path("a/b")).permissions() & ~fs::perms{0750}, fs::perms::none);
    nxWriteFile(Path("file"), "");
    for (const char* path : {"file", "file/below"})
        EXPECT_EQ(directory.Open(Path(path)), ENOTDIR);
    fs::create_directory_symlink(Path("a"), Path("link"));
    ASSERT_EQ(directory.Open(Path("link")), 0);
    ASSERT_EQ(directory.Enter("new"), 0);
    EXPECT_TRUE(fs::is_directory(Path("a/new")));
    EXPECT_FALSE(directory.IsOpenToOthers());

    const std::tuple<const char*, unsigned, int, bool> rows[] = {{"file", 0644, ENOTDIR, false},
                                                                 {"link", 0700, ELOOP, false},
                                                                 {"everybody", 0777, EPERM, false},
                                                                 {"sticky", 01777, 0, false},
                                                                 {"group", 0770, 0, true}};
    for (const auto& [name, mode, error, isOpen] : rows)
    {
        std::error_code exists;
        fs::create_directory(Path(name), exists);
        fs::permissions(Path(name), fs::perms{mode});
        ASSERT_EQ(directory.Open(Path("")), 0);
        EXPECT_EQ(directory.Enter(name), error) << name;
        EXPECT_EQ(directory.IsOpenToOthers(), isOpen) << name;
    }
}
