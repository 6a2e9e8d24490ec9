// SPDX-License-Identifier: Apache-2.0
// A process is killed before each call that it makes while it replaces a file.
#include <signal.h>
#include <unistd.h>

#include "core/app/nxFileHelper.h"
#include "tests/support/nxChildProcess.h"
#include "tests/support/nxScratchDirectory.h"
#include "tests/support/nxSystemCallFault.h"

namespace
{
void KillThisProcess() { kill(getpid(), SIGKILL); }

// Whether the process came to the end.
bool ReplaceAndDie(const std::string& path, const std::string& content, const char* function, unsigned call)
{
    return nxInChild(
        [&]
        {
            const nxSystemCallFault fault(function, EIO, {.skip = call, .meanwhile = KillThisProcess});
            EXPECT_TRUE(nxFileHelper::ReplaceFile(path, content, nxFileHelper::Durability::Durable).IsOK());
        });
}
}  // namespace

TEST(nxAtomicFileKills, LeaveTheOldOrTheNewContentAndAtMostOneWholeFile)
{
    const std::string before(100'000, 'b');
    const std::string after(200'000, 'a');
    int kills = 0;
    for (const char* const function :
         {"open", "openat", "fstat", "access", "fchmod", "write", "fsync", "linkat", "renameat"})
    {
        bool isOver = false;
        for (unsigned call = 0; !isOver; ++call)
        {
            SCOPED_TRACE(std::string(function) + " " + std::to_string(call));
            const nxScratchDirectory scratch;
            const std::string path = (scratch.GetPath() / "file").string();
            nxWriteFile(path, before);
            isOver = ReplaceAndDie(path, after, function, call);
            kills += !isOver;
            // The content is new from the rename on: then only the directory's change is still to be stored.
            const bool isRenamed = isOver || (function == std::string("fsync") && call == 1);
            std::string content;
            std::vector<std::string> names;
            ASSERT_TRUE(nxFileHelper::ReadFile(path, 200'000, content).IsOK());
            // Calls of fstat are made all the way, so that the kill alone does not tell.
            const bool isUncertain = function == std::string("fstat");
            EXPECT_TRUE(content == (isRenamed ? after : before) || (isUncertain && content == after));
            ASSERT_TRUE(nxFileHelper::ListDirectory(scratch.GetPath(), names).IsOK());
            ASSERT_EQ(names.size(), function == std::string("renameat") && !isOver ? 2U : 1U);
            EXPECT_EQ(nxReadFile(scratch.GetPath() / names[0]), names.size() == 2 ? after : content) << names[0];
        }
    }
    EXPECT_GE(kills, 10);
}
