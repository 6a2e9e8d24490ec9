// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGDEVICEBOOK_H
#define CORE_LOG_INTERNAL_NXLOGDEVICEBOOK_H

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "core/thread/nxMutex.h"

class nxLogDevice;

/// What is counted for one device.
///
/// Threads: any may read and add.
struct nxLogDeviceCounts
{
    /// Adds where one thread at a time does, the one inside the device.
    static void AddInside(std::atomic<std::uint64_t>& count, std::uint64_t more) noexcept
    {
        count.store(count.load(std::memory_order_relaxed) + more, std::memory_order_relaxed);
    }

    // Relaxed: figures, which order no other memory.
    std::atomic<std::uint64_t> records{0};  ///< That the device was given. Added inside.
    std::atomic<std::uint64_t> bytes{0};    ///< Of the lines that it was given. Added inside.
    std::atomic<std::uint64_t> missed{0};   ///< Records that it could not be given.
    std::atomic<std::uint64_t> lost{0};     ///< Lines that it was given and has lost.
    std::atomic<std::uint64_t> errors{0};   ///< Times that it failed, or threw.
};

/// The names and counts of all devices that live. Never destroyed.
///
/// Invariant: a device has one page from its registration, or from its naming before that, until it is destroyed. Names are
/// different.
///
/// Errors: std::bad_alloc is thrown, where a page must be made. Threads: any.
class nxLogDeviceBook
{
public:
    using Counts = std::shared_ptr<nxLogDeviceCounts>;

    static nxLogDeviceBook& GetInstance() noexcept;

    /// @return the counts of @p device, which go on when it is registered again. A device without a name is called "device1",
    ///         "device2" and so on.
    Counts Open(const nxLogDevice* device);
    /// Names a device; the empty name means one of the book's own. Where another one has the name, "#2" or so is appended.
    void SetName(const nxLogDevice* device, std::string_view name);
    /// @return the name; empty for a device without a page.
    std::string GetName(const nxLogDevice* device);
    /// The device is destroyed.
    void Close(const nxLogDevice* device) noexcept;

    /// For the library's own devices. Nothing is counted for a device without a page.
    void CountLost(const nxLogDevice* device, std::uint64_t lines) noexcept;
    void CountError(const nxLogDevice* device) noexcept;  ///< @copydoc CountLost()

    void BeforeFork() noexcept;
    void AfterForkInParent() noexcept;
    /// The counts begin at 0.
    void AfterForkInChild() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    struct Page
    {
        std::string name;
        Counts counts;
    };

    nxLogDeviceBook() noexcept = default;
    ~nxLogDeviceBook() = delete;

    Page& _Open(const nxLogDevice* device) NX_REQUIRES(_mutex);
    Counts _Find(const nxLogDevice* device) noexcept;
    std::string _MakeName(const nxLogDevice* device) NX_REQUIRES(_mutex);
    std::string _MakeUnique(const nxLogDevice* device, std::string_view name) const NX_REQUIRES(_mutex);

    nxMutex _mutex;
    std::map<const nxLogDevice*, Page> _pages NX_GUARDED_BY(_mutex);
    unsigned _unnamed NX_GUARDED_BY(_mutex) = 0;  // devices that got a name of the book's own
};

#endif
