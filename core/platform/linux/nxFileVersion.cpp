// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxFileVersion.h"

#include <sys/stat.h>

#include <cerrno>

#include "core/platform/linux/nxSystemCall.h"

int nxFileVersion::Read(const char* path, nxFileVersion& version) noexcept
{
    struct stat status = {};
    if (nxSystemCall::RetryInterrupted([&] { return stat(path, &status); }) != 0)
        return errno;
    version = {status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec, status.st_mtim.tv_nsec};
    return 0;
}
