// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_SUPPORT_NXPRIVATEMEMORY_H
#define TESTS_SUPPORT_NXPRIVATEMEMORY_H

#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

#include <string>

#include "tests/support/nxChildProcess.h"
#include "tests/support/nxScratchDirectory.h"

/// An empty /dev/shm of this process's own, so that no other process's named objects are in it and planted files do no
/// harm.
class nxPrivateMemory
{
public:
    nxPrivateMemory() = delete;

    /// What a test begins with that needs one: runs the test once more in a new process.
    /// @return true in the new process, which has one and executes the body of the test; false in the old one, and where
    ///         that is not allowed.
    static bool InNewProcess(const char* options = "")
    {
        if (!nxInNewProcess())
            return false;
        const bool mounted = Mount(options);
        if (!mounted)
            [] { GTEST_SKIP() << "no private /dev/shm here"; }();
        return mounted;
    }

    /// Mounts another one, empty, over what there is, in a process that nxInNewProcess() has made: the view of the file
    /// system stays separate. @p options are those of tmpfs. @return false where that is not allowed.
    static bool Mount(const char* options = "")
    {
        static const bool separate = _SeparateFileSystem();
        return separate && mount("none", "/dev/shm", "tmpfs", 0, options) == 0;
    }

private:
    // As a user without rights, in a user name space where that user may mount.
    static bool _SeparateFileSystem()
    {
        if (unshare(CLONE_NEWNS) == 0)
            return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
        const auto itself = [](unsigned id) { return std::to_string(id) + ' ' + std::to_string(id) + " 1"; };
        const std::string user = itself(geteuid());
        const std::string group = itself(getegid());
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        nxWriteFile("/proc/self/uid_map", user);
        nxWriteFile("/proc/self/setgroups", "deny");
        nxWriteFile("/proc/self/gid_map", group);
        return true;
    }
};

#endif
