// SPDX-License-Identifier: Apache-2.0
#include "core/platform/nxEnvironment.h"

#include <sched.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <exception>

namespace
{
// Set while a thread changes the environment or copies from it. Take() is the acquire, GiveBack() the release.
constinit std::atomic<bool> isTaken{false};

bool Take() { return !isTaken.exchange(true, std::memory_order_acquire); }

void GiveBack() { isTaken.store(false, std::memory_order_release); }
}  // namespace

bool nxEnvironment::Find(const std::string& name, std::string& value)
{
    const char* const found = std::getenv(name.c_str());
    if (found == nullptr)
        return false;
    try
    {
        value = found;
    }
    catch (const std::exception&)
    {
        value.clear();
    }
    return true;
}

char** nxEnvironment::GetArray() { return environ; }

bool nxEnvironment::Set(const std::string& name, const std::string& value)
{
    // Copying takes a few microseconds at most.
    while (!Take())
        sched_yield();
    const bool isSet = ::setenv(name.c_str(), value.c_str(), 1) == 0;
    GiveBack();
    return isSet;
}

int nxEnvironment::Copy(const char* name, std::span<char> value) noexcept
{
    if (!Take())
        return EBUSY;
    int result = ENOENT;
    if (const char* const found = std::getenv(name))
    {
        const std::size_t size = std::strlen(found) + 1;
        result = size <= value.size() ? 0 : EFBIG;
        if (result == 0)
            std::copy_n(found, size, value.data());
    }
    GiveBack();
    return result;
}

nxEnvironment::Reading::Reading() noexcept
{
    constexpr int attempts = 1'000;
    for (int i = 0; i < attempts && !_isOurs; ++i)
    {
        _isOurs = Take();
        if (!_isOurs)
            sched_yield();
    }
}

nxEnvironment::Reading::~Reading()
{
    if (_isOurs)
        GiveBack();
}

void nxEnvironment::AfterForkInChild() noexcept { GiveBack(); }

bool nxEnvironment::IsSecureExecution() { return ::getauxval(AT_SECURE) != 0; }
