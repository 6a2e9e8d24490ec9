// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/nxSystemZone.h"

#include <pthread.h>

#include <utility>

#include "core/platform/nxEnvironment.h"
#include "core/platform/nxThisThread.h"

namespace
{
pthread_mutex_t askingTheLibrary = PTHREAD_MUTEX_INITIALIZER;
bool isHeldForFork = false;  // of the thread that forks
bool hasAsked = false;       // under the mutex

bool Ask(std::time_t moment, std::tm& fields)
{
    if (std::exchange(hasAsked, true))
        return localtime_r(&moment, &fields) != nullptr;
    const nxEnvironment::Reading reading;
    return localtime_r(&moment, &fields) != nullptr;
}
}  // namespace

bool nxSystemZone::GetLocalTime(std::int64_t second, std::tm& fields)
{
    pthread_mutex_lock(&askingTheLibrary);
    const bool isKnown = Ask(second, fields);
    pthread_mutex_unlock(&askingTheLibrary);
    return isKnown;
}

// A signal handler that forks may have interrupted the holder, so the wait has an end.
void nxSystemZone::BeforeFork()
{
    constexpr int attempts = 1'000;
    isHeldForFork = pthread_mutex_trylock(&askingTheLibrary) == 0;
    for (int i = 0; i < attempts && !isHeldForFork; ++i)
    {
        nxThisThread::SleepMilliseconds(1);
        isHeldForFork = pthread_mutex_trylock(&askingTheLibrary) == 0;
    }
}

void nxSystemZone::AfterForkInParent()
{
    if (std::exchange(isHeldForFork, false))
        pthread_mutex_unlock(&askingTheLibrary);
}

void nxSystemZone::AfterForkInChild()
{
    if (std::exchange(isHeldForFork, false))
        pthread_mutex_unlock(&askingTheLibrary);
    else
        pthread_mutex_init(&askingTheLibrary, nullptr);
}
