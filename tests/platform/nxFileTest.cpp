#include "core/platform/nxFile.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>

#include "tests/support/nxScratchDirectory.h"

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
    std::size_t written = 0;
    ASSERT_EQ(file.CreateNew(Path("new")), 0);
    ASSERT_EQ(file.Write("0123456789", 10, written), 0);
    EXPECT_EQ(file.Truncate(4), 0);
    ASSERT_EQ(file.Write("x", 1, written), 0);
    EXPECT_EQ(nxReadFile(Path("new")), "0123x");
    EXPECT_FALSE(file.IsUnlinked());
    fs::remove(Path("new"));
    EXPECT_TRUE(file.IsUnlinked());

    nxWriteFile(Path("old"), "old");
    fs::create_symlink(Path("nowhere"), Path("link"));
    for (const char* name : {"old", "link"})
    {
        EXPECT_EQ(file.CreateNew(Path(name)), EEXIST);
        EXPECT_FALSE(file.IsOpen());
    }
    EXPECT_EQ(file.CreateNew(Path("no/directory")), ENOENT);
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

    // One that was waiting before is somebody else's.
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

    const int full = open("/dev/full", O_WRONLY);
    EXPECT_EQ(nxFile::WriteTo(full, "text", 4, written), ENOSPC);
    close(full);
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

TEST_F(nxFileTest, CreatesDirectoriesAndThoseAboveThem)
{
    EXPECT_EQ(nxFile::CreateDirectories(Path("a/b//c")), 0);
    EXPECT_EQ(nxFile::CreateDirectories(Path("a/b/c")), 0);
    struct stat status = {};
    ASSERT_EQ(stat(Path("a/b").c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777 & ~0750U, 0U);
    nxWriteFile(Path("file"), "");
    EXPECT_EQ(nxFile::CreateDirectories(Path("file")), ENOTDIR);
    EXPECT_EQ(nxFile::CreateDirectories(Path("file/below")), ENOTDIR);
}
