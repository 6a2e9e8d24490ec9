// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxForkHandlers.h"

#include <pthread.h>

namespace
{
constinit nxForkHandlers::Table forkTable;
// The ranks that take part in the fork that the thread is in the middle of.
constinit thread_local unsigned ranksOfThisFork = 0;

void RunBeforeFork() { ranksOfThisFork = forkTable.RunBefore(); }
void RunAfterForkInParent() { forkTable.RunInParent(ranksOfThisFork); }
void RunAfterForkInChild() { forkTable.RunInChild(ranksOfThisFork); }
}  // namespace

bool nxForkHandlers::Register(Rank rank, const Functions& functions) noexcept
{
    // The first call comes while the library is loaded, by one thread. The default order, because calls are few.
    static constinit std::atomic<bool> isKnownToSystem{false};
    if (!isKnownToSystem.exchange(true) &&
        pthread_atfork(&RunBeforeFork, &RunAfterForkInParent, &RunAfterForkInChild) != 0)
    {
        isKnownToSystem.store(false);
        return false;
    }
    forkTable.Set(rank, functions);
    return true;
}
