// SPDX-License-Identifier: Apache-2.0
#include "core/log/internal/nxLogDeviceBook.h"

#include <algorithm>
#include <new>
#include <utility>

#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutexGuard.h"

nxLogDeviceBook& nxLogDeviceBook::GetInstance() noexcept
{
    alignas(nxLogDeviceBook) static unsigned char storage[sizeof(nxLogDeviceBook)];
    static nxLogDeviceBook& book = *::new (storage) nxLogDeviceBook;
    return book;
}

nxLogDeviceBook::Counts nxLogDeviceBook::Open(const nxLogDevice* device)
{
    const nxMutexGuard guard(_mutex);
    Page& page = _Open(device);
    if (page.name.empty())
        page.name = _MakeName(device);
    return page.counts;
}

nxLogDeviceBook::Page& nxLogDeviceBook::_Open(const nxLogDevice* device)
{
    const auto found = _pages.find(device);
    if (found != _pages.end())
        return found->second;
    return _pages.emplace(device, Page{std::string(), std::make_shared<nxLogDeviceCounts>()}).first->second;
}

void nxLogDeviceBook::SetName(const nxLogDevice* device, std::string_view name)
{
    const nxMutexGuard guard(_mutex);
    std::string unique = name.empty() ? _MakeName(device) : _MakeUnique(device, name);
    _Open(device).name.swap(unique);
}

std::string nxLogDeviceBook::_MakeName(const nxLogDevice* device)
{
    return _MakeUnique(device, "device" + std::to_string(++_unnamed));
}

std::string nxLogDeviceBook::_MakeUnique(const nxLogDevice* device, std::string_view name) const
{
    std::string unique(name);
    const auto isTaken = [&](const auto& page) { return page.first != device && page.second.name == unique; };
    for (unsigned number = 2; std::any_of(_pages.begin(), _pages.end(), isTaken); ++number)
        unique = std::string(name).append("#").append(std::to_string(number));
    return unique;
}

std::string nxLogDeviceBook::GetName(const nxLogDevice* device)
{
    const nxMutexGuard guard(_mutex);
    const auto found = _pages.find(device);
    return found != _pages.end() ? found->second.name : std::string();
}

void nxLogDeviceBook::Close(const nxLogDevice* device) noexcept
{
    const nxMutexGuard guard(_mutex);
    _pages.erase(device);
}

nxLogDeviceBook::Counts nxLogDeviceBook::_Find(const nxLogDevice* device) noexcept
{
    const nxMutexGuard guard(_mutex);
    const auto found = _pages.find(device);
    return found != _pages.end() ? found->second.counts : nullptr;
}

void nxLogDeviceBook::CountLost(const nxLogDevice* device, std::uint64_t lines) noexcept
{
    if (const Counts counts = _Find(device); counts != nullptr)
        counts->lost.fetch_add(lines, std::memory_order_relaxed);
}

void nxLogDeviceBook::CountError(const nxLogDevice* device) noexcept
{
    if (const Counts counts = _Find(device); counts != nullptr)
        counts->errors.fetch_add(1, std::memory_order_relaxed);
}

void nxLogDeviceBook::BeforeFork() noexcept { nxForkMutex::Take(_mutex); }

void nxLogDeviceBook::AfterForkInParent() noexcept { nxForkMutex::GiveBack(_mutex); }

void nxLogDeviceBook::AfterForkInChild() noexcept
{
    nxForkMutex::Renew(_mutex);
    for (const auto& [device, page] : _pages)
        for (std::atomic<std::uint64_t>* const count : {&page.counts->records, &page.counts->bytes,
                                                        &page.counts->missed, &page.counts->lost, &page.counts->errors})
            count->store(0, std::memory_order_relaxed);
}
