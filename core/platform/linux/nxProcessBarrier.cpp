// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxProcessBarrier.h"

#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>

namespace
{
bool AskForMembarrier(int command)
{
    const int saved = errno;
    const bool isDone = syscall(SYS_membarrier, command, 0, 0) == 0;
    errno = saved;
    return isDone;
}
}  // namespace

bool nxProcessBarrier::Prepare() noexcept { return AskForMembarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED); }

bool nxProcessBarrier::Pass() noexcept { return AskForMembarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED); }
