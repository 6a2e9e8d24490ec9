// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxFileClaim.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

#include "core/platform/linux/nxRecordLock.h"
#include "core/platform/linux/nxSystemCall.h"

int nxFileClaim::Take(const nxDirectory& directory, const std::string& name)
{
    // Not blocking: a pipe in the place of the file must not make this wait for a reader.
    nxDescriptor opened(nxSystemCall::RetryInterrupted(
        [&]
        {
            return openat(directory.GetDescriptor(), name.c_str(),
                          O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, 0);
        }));
    struct stat status = {};
    if (!opened.IsOpen())
        return errno;
    if (const int error = opened.Check(status); error != 0)
        return error;
    if (!S_ISREG(status.st_mode) || status.st_uid != geteuid())
        return EPERM;
    if (!nxRecordLock::TryExclusive(opened.Get(), 0))
        return errno;
    // Its owner may have removed or renamed it since it was opened here, and given up the right to it then.
    struct stat named = {};
    if (fstatat(directory.GetDescriptor(), name.c_str(), &named, AT_SYMLINK_NOFOLLOW) != 0)
        return errno;
    if (nxFileIdentity(named) != nxFileIdentity(status))
        return ENOENT;
    _descriptor = std::move(opened);
    return 0;
}
