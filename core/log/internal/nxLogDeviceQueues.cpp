// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceQueues.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <new>
#include <string_view>
#include <vector>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxStandardStream.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

constinit nxLogDeviceQueues::Member* nxLogDeviceQueues::_first = nullptr;

// Never destroyed: the log's thread asks to the very end.
nxMutex& nxLogDeviceQueues::_GetMutex() noexcept
{
    alignas(nxMutex) static unsigned char storage[sizeof(nxMutex)];
    static nxMutex& mutex = *::new (storage) nxMutex;
    return mutex;
}

template <class Action>
void nxLogDeviceQueues::_ForEach(const Action& action)
{
    for (Member* queue = _first; queue != nullptr; queue = queue->_next)
        action(*queue);
}

void nxLogDeviceQueues::Member::Join() noexcept
{
    const nxMutexGuard guard(_GetMutex());
    _next = _first;
    _first = this;
}

void nxLogDeviceQueues::Member::Leave() noexcept
{
    const nxMutexGuard guard(_GetMutex());
    Member** at = &_first;
    while (*at != this)
        at = &(*at)->_next;
    *at = _next;
}

// The list is not locked meanwhile: a queue that is waited for lives as long as the wait.
bool nxLogDeviceQueues::WaitUntilWritten(const nxLogLimits::Wait& limit, nxLogAwakeTime& time) noexcept
try
{
    std::vector<std::shared_ptr<Member>> queues;
    {
        const nxMutexGuard guard(_GetMutex());
        _ForEach([&](Member& queue) { queues.push_back(queue.weak_from_this().lock()); });
    }
    bool isWritten = true;
    for (const auto& queue : queues)
        if (queue != nullptr && !queue->WaitUntilWritten(queue->GetLimitFor(limit), time))
            isWritten = false;
    return isWritten;
}
catch (...)
{
    return false;
}

unsigned nxLogDeviceQueues::CountThreads() noexcept
{
    const nxMutexGuard guard(_GetMutex());
    unsigned count = 0;
    _ForEach([&](const Member& queue) { count += queue.HasThread(); });
    return count;
}

std::uint64_t nxLogDeviceQueues::CountWaiting() noexcept
{
    const nxMutexGuard guard(_GetMutex());
    std::uint64_t count = 0;
    _ForEach([&](const Member& queue) { count += queue.GetWaiting(); });
    return count;
}

void nxLogDeviceQueues::TellDropped(std::uint64_t records) noexcept
{
    constexpr std::string_view begin = "Log records that a device with a thread of its own did not take in time: ";
    char text[128];
    char* end = std::copy(begin.begin(), begin.end(), text);
    end = std::to_chars(end, text + sizeof text - 1, records).ptr;
    *end++ = '\n';
    static_cast<void>(nxStandardStream::GetErrors().Write({text, static_cast<std::size_t>(end - text)}));
}

void nxLogDeviceQueues::BlockForGood() noexcept
{
    const nxMutexGuard guard(_GetMutex());
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + nxLogLimits::StalledDeviceAtEnd;
    _ForEach([deadline](Member& queue) { queue.BlockForGood(deadline); });
}

void nxLogDeviceQueues::BeforeFork() noexcept
{
    nxForkMutex::Take(_GetMutex());
    _ForEach([](Member& queue) { queue.BeforeFork(); });
}

void nxLogDeviceQueues::LockForFork() noexcept
{
    _ForEach([](Member& queue) { queue.LockForFork(); });
}

void nxLogDeviceQueues::AfterForkInParent() noexcept
{
    _ForEach([](Member& queue) { queue.AfterForkInParent(); });
    nxForkMutex::GiveBack(_GetMutex());
}

void nxLogDeviceQueues::AfterForkInChild() noexcept
{
    _ForEach([](Member& queue) { queue.AfterForkInChild(); });
    nxForkMutex::Renew(_GetMutex());
}
