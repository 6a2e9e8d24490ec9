// SPDX-License-Identifier: Apache-2.0
#ifndef TESTS_THREAD_NXNAMEDOBJECTS_H
#define TESTS_THREAD_NXNAMEDOBJECTS_H

#include <cstddef>
#include <filesystem>
#include <iterator>
#include <string>

#include "core/thread/nxWindowsMutex.h"
#include "core/thread/nxWindowsSemaphore.h"

/// Takes what can be had without waiting.
inline unsigned Drain(nxWindowsSemaphore& semaphore)
{
    unsigned count = 0;
    while (!semaphore.IsNull() && semaphore.TimedWait(0).IsOK())
        ++count;
    return count;
}

/// What a process that opens or makes the semaphore finds free.
inline unsigned CountIn(const std::string& name, unsigned initial)
{
    nxWindowsSemaphore semaphore(name, initial, 5);
    return Drain(semaphore);
}

inline std::size_t EntriesOf(const char* path)
{
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path), {}));
}

#endif
