#include "core/platform/linux/nxNamedObjectTable.h"

#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <new>

#include "core/platform/inline/nxClock.h"
#include "core/platform/nxForkHandlers.h"

nxNamedObjectTable& nxNamedObjectTable::GetInstance()
{
    // Never destroyed, and made without an allocation, because those who ask must not throw.
    alignas(nxNamedObjectTable) static unsigned char place[sizeof(nxNamedObjectTable)];
    static nxNamedObjectTable& table = *new (place) nxNamedObjectTable;
    return table;
}

namespace
{
// Made while the library is loaded: a fork during a first use would leave the child waiting for it for ever.
[[maybe_unused]] const nxNamedObjectTable& madeAtLoad = nxNamedObjectTable::GetInstance();
}  // namespace

nxNamedObjectTable::nxNamedObjectTable()
{
    static constexpr nxForkHandlers::Functions functions{&_BeforeFork, &_AfterForkInParent, &_AfterForkInChild};
    nxForkHandlers::Register(nxForkHandlers::Rank::NamedObjects, functions);
}

nxNamedObject* nxNamedObjectTable::Open(const std::string& name, nxNamedObjectKind kind,
                                        const nxNamedObjectFile::Initialiser& initialise, Notice& notice)
{
    notice = Notice::None;
    if (name.size() > nxNamedObject::LongestName)
    {
        errno = ENAMETOOLONG;
        return nullptr;
    }
    constexpr std::int64_t patience = 5'000'000'000;
    constexpr long longestPause = 10'000'000;
    const std::int64_t deadline = nxClock::MonotonicNanoseconds() + patience;
    for (timespec pause{0, 50'000};; pause.tv_nsec = std::min(2 * pause.tv_nsec, longestPause))
    {
        {
            const std::lock_guard<std::mutex> guard(_mutex);
            nxNamedObject* object = nullptr;
            const nxNamedObjectAnswer answer = _Try(name, kind, initialise, object, notice);
            if (answer == nxNamedObjectAnswer::Opened)
                return object;
            if (answer != nxNamedObjectAnswer::Busy)
                return nullptr;
            if (nxClock::MonotonicNanoseconds() >= deadline)
            {
                errno = ETIMEDOUT;
                notice = _Refused();
                return nullptr;
            }
        }
        nanosleep(&pause, nullptr);
    }
}

nxNamedObjectAnswer nxNamedObjectTable::_Try(const std::string& name, nxNamedObjectKind kind,
                                             const nxNamedObjectFile::Initialiser& initialise, nxNamedObject*& object,
                                             Notice& notice)
{
    nxNamedObjectFile* const file = _FileOfNow();
    const nxNamedObjectAnswer answer =
        file != nullptr ? file->Open(name, kind, initialise, object) : nxNamedObjectAnswer::Refused;
    if (file != nullptr && file->WasRemoved())
        notice = Notice::Removed;
    else if (answer == nxNamedObjectAnswer::Refused)
        notice = _Refused();
    if (answer == nxNamedObjectAnswer::Opened)
        _isRefused = false;
    return answer;
}

// Null, with errno, when the system does not tell who the process is, or there is no memory.
nxNamedObjectFile* nxNamedObjectTable::_FileOfNow()
try
{
    const std::optional<nxNamedObjectPlace::Identity> identity = nxNamedObjectPlace::FindIdentity();
    if (!identity)
    {
        // Who has been told once is still the same, as long as it is the same process of the same user.
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

nxNamedObjectTable::Notice nxNamedObjectTable::_Refused()
{
    const bool isNews = !_isRefused;
    _isRefused = true;
    return isNews ? Notice::Refused : Notice::None;
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
