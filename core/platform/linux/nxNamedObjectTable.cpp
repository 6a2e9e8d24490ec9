// SPDX-License-Identifier: Apache-2.0
#include "core/platform/linux/nxNamedObjectTable.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <ctime>
#include <new>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxForkHandlers.h"
#include "core/platform/nxNanoseconds.h"

nxNamedObjectTable& nxNamedObjectTable::GetInstance()
{
    // Never destroyed, and made without an allocation, because the callers must not throw.
    alignas(nxNamedObjectTable) static unsigned char place[sizeof(nxNamedObjectTable)];
    static nxNamedObjectTable& table = *new (place) nxNamedObjectTable;
    return table;
}

namespace
{
// Made while the library is loaded. A child forked during a first use would wait for the guard of the static for ever.
[[maybe_unused]] const nxNamedObjectTable& madeAtLoad = nxNamedObjectTable::GetInstance();
}  // namespace

nxNamedObjectTable::nxNamedObjectTable()
{
    static constexpr nxForkHandlers::Functions functions{&_BeforeFork, &_AfterForkInParent, &_AfterForkInChild};
    nxForkHandlers::Register(nxForkHandlers::Rank::NamedObjects, functions);
}

nxNamedObject* nxNamedObjectTable::Open(const std::string& name, nxNamedObjectKind kind,
                                        const nxNamedObjectFile::Initialiser& initialise, nxNamedLockNotice& notice)
{
    notice = nxNamedLockNotice::None;
    if (name.size() > nxNamedObject::LongestName)
    {
        errno = ENAMETOOLONG;
        return nullptr;
    }
    constexpr std::int64_t longestWait = 5 * nxNanoseconds::PerSecond;
    constexpr long longestPause = 10 * nxNanoseconds::PerMillisecond;
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + longestWait;
    for (timespec pause{0, nxNanoseconds::PerMillisecond / 20};;
         pause.tv_nsec = std::min(2 * pause.tv_nsec, longestPause))
    {
        {
            const Guard guard(_mutex);
            nxNamedObject* object = nullptr;
            const nxNamedObjectAnswer answer = _Try(guard, name, kind, initialise, object, notice);
            if (answer == nxNamedObjectAnswer::Opened)
                return object;
            if (answer != nxNamedObjectAnswer::Busy)
                return nullptr;
            if (nxClock::MonotonicNanoseconds() >= deadline)
            {
                errno = ETIMEDOUT;
                notice = _Refused(guard);
                return nullptr;
            }
        }
        nanosleep(&pause, nullptr);
    }
}

nxNamedObjectAnswer nxNamedObjectTable::_Try(const Guard& guard, const std::string& name, nxNamedObjectKind kind,
                                             const nxNamedObjectFile::Initialiser& initialise, nxNamedObject*& object,
                                             nxNamedLockNotice& notice)
{
    nxNamedObjectFile* const file = _FileOfNow(guard);
    const nxNamedObjectAnswer answer =
        file != nullptr ? file->Open(name, kind, initialise, object) : nxNamedObjectAnswer::Refused;
    if (file != nullptr && file->WasRemoved())
        notice = nxNamedLockNotice::Removed;
    else if (answer == nxNamedObjectAnswer::Refused)
        notice = _Refused(guard);
    if (answer == nxNamedObjectAnswer::Opened)
        _isRefused = false;
    return answer;
}

// Null, with errno, when the system does not tell who the process is, or there is no memory.
nxNamedObjectFile* nxNamedObjectTable::_FileOfNow(const Guard&)
try
{
    const std::optional<nxNamedObjectPlace::Identity> identity = nxNamedObjectPlace::FindIdentity();
    if (!identity)
    {
        // An identity that was found once stays valid for the same process of the same user.
        const bool isKnown = _last != nullptr && _process == getpid() && _last->GetIdentity().user == geteuid();
        return isKnown ? _last : nullptr;
    }
    const auto found =
        std::find_if(_files.begin(), _files.end(), [&](const auto& file) { return file->GetIdentity() == *identity; });
    _last = found != _files.end() ? found->get()
                                  : _files.emplace_back(std::make_unique<nxNamedObjectFile>(*identity)).get();
    _process = getpid();
    return _last;
}
catch (const std::bad_alloc&)
{
    errno = ENOMEM;
    return nullptr;
}

nxNamedLockNotice nxNamedObjectTable::_Refused(const Guard&)
{
    const bool isNews = !_isRefused;
    _isRefused = true;
    return isNews ? nxNamedLockNotice::Refused : nxNamedLockNotice::None;
}

void nxNamedObjectTable::_BeforeFork() { GetInstance()._mutex.lock(); }

void nxNamedObjectTable::_AfterForkInParent() { GetInstance()._mutex.unlock(); }

void nxNamedObjectTable::_AfterForkInChild()
{
    nxNamedObjectTable& table = GetInstance();
    for (const auto& file : table._files)
        file->AfterForkInChild();
    table._mutex.unlock();
}
