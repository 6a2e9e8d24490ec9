#ifndef CORE_LOG_INTERNAL_NXLOGWRITER_H
#define CORE_LOG_INTERNAL_NXLOGWRITER_H

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "core/log/internal/nxLogAwakeTime.h"
#include "core/log/internal/nxLogDeviceList.h"
#include "core/log/internal/nxLogLineBuffer.h"
#include "core/log/internal/nxLogTimeText.h"
#include "core/log/nxLog.h"
#include "core/platform/nxServiceThread.h"
#include "core/thread/nxMutex.h"

class nxLogDeferredWriteThread;
struct nxLogRecord;

/// What the deferred-write thread does: takes the queued records in rounds and passes them to the devices.
///
/// A round belongs to one thread at a time. That is the deferred-write thread; another one only where that thread
/// cannot run, so that records are written all the same. Never destroyed.
class nxLogWriter
{
public:
    static nxLogWriter& GetInstance() noexcept;

    /// What nxLogBell asks for.
    bool Start() noexcept;
    void RunRoundHere(std::int64_t limit) noexcept;
    void Urge(nxEnumValue level) noexcept;

    /// Whether records that have been taken from the queue may not have reached all devices yet.
    bool IsInRound() const noexcept { return _isInRound.load(std::memory_order_acquire); }
    /// Ends the deferred-write thread. @return whether it ended within @p patience nanoseconds.
    bool Stop(std::int64_t patience) noexcept;

    /// How the deferred-write thread runs, from now on.
    void SetThread(std::span<const unsigned> processors, unsigned priority) noexcept;

    /// Waits until all that was queued before the call has been written and flushed.
    /// @param limit, stallLimit nanoseconds: how long at most, and how long without a sign of life from the devices. The
    ///        time for which the process itself stood still does not count.
    /// @return whether it has been.
    bool WaitUntilWritten(std::int64_t limit, std::int64_t stallLimit) noexcept;

    /// The same at the end of the process: starts no thread, and does nothing where nothing was ever written.
    /// @return whether all has been written, be it nothing.
    bool WriteOut(std::int64_t limit, std::int64_t stallLimit) noexcept;
    /// @param time what has been waited before; it counts towards @p limit.
    bool WriteOut(std::int64_t limit, std::int64_t stallLimit, nxLogAwakeTime& time) noexcept;

    /// At the end of the deferred-write thread that is the last one: writes out, and is a thread like others then.
    void Leave() noexcept;
    /// Lets no thread begin a round any more, for good: at the very end of the process. Waits at most @p limit
    /// nanoseconds for the round that is going on.
    void BlockRoundsForGood(std::int64_t limit) noexcept;

    /// Seconds between two flushes of devices that have been written to; 0 or less means after every round.
    void SetFlushInterval(double seconds) noexcept;

    /// Appends copies of all records that wait, be it for the first device. Each thread's are in order, those of
    /// different threads are not.
    void CopyRecords(std::vector<nxLog>& records);

    /// How many records of the round that is going on are still in the queue although devices were given them.
    unsigned GetInHand() const noexcept { return _inHand.load(std::memory_order_relaxed); }

    void AfterForkInChild() noexcept;

private:
    friend class nxLogDeferredWriteThread;

    /// The lines of one style that wait for the devices that want it.
    struct Batch
    {
        nxLogLineStyle style;
        nxLogLineBuffer lines;
        unsigned count = 0;
        nxEnumValue worstLevel = NX_ENUM_UNDEFINED;
        long long seconds = 0;
        bool isWanted = false;  // in this round
    };

    /// What a round works with; its own object, so that a forked child can start anew.
    struct Round
    {
        std::shared_ptr<const nxLogDeviceList::Entries> devices;
        std::vector<std::unique_ptr<Batch>> batches;
        std::vector<Batch*> batchOfDevice;  // null for a device that takes records
        bool hasDevices = false;            // that are still registered
        bool hasRecordDevices = false;
        Batch* onlyBatch = nullptr;  // when records go into this one and nowhere else
        unsigned inLinesAlone = 0;   // of those in the batches: no device has had them yet. Not counted for onlyBatch
        nxLogTimeText time;          // of the record at hand
        char date[8] = {};           // of the lines in the batches
        nxLogLineThread thread{};
        nxEnumValue worstLevel = NX_ENUM_UNDEFINED;
    };

    nxLogWriter() noexcept = default;
    ~nxLogWriter() = delete;

    void _Run() noexcept;
    bool _WriteQueued(bool everything) noexcept;
    bool _LockRound(std::int64_t patience) noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

    bool _WaitUntilWritten(std::int64_t limit, std::int64_t stallLimit, nxLogAwakeTime& time, bool mayStart) noexcept;
    bool _DoRound(bool everything, bool& found) noexcept;
    void _BeginRound();
    Batch& _GetBatch(const nxLogLineStyle& style);
    void _WriteEarly() noexcept;
    void _KeepEarly(const nxLogRecord& record) noexcept;
    void _Pass(const nxLogRecord& record) noexcept;
    void _PassToAll(const nxLogRecord& record) noexcept;
    void _Count(unsigned records, bool isTaken) noexcept;
    bool _PassRecord(const nxLogRecord& record) noexcept;
    bool _AppendToBatch(Batch& batch, const nxLogRecord& record) noexcept;
    bool _AppendToEmptied(Batch& batch, const nxLogRecord& record) noexcept;
    void _SendBatches() noexcept;
    void _FlushDevices(bool linesToo) noexcept;
    void _FlushWhereDue(bool now) noexcept;
    void _MaintainWhereDue() noexcept;
    void _ReportLosses() noexcept;

    nxMutex _startMutex;
    std::atomic<bool> _isInRound{false};
    std::int64_t _nextStart = 0;
    std::atomic<bool> _couldNotStart{false};  // at the last attempt
    nxLogDeferredWriteThread* _thread = nullptr;
    nxServiceThread _service;

    std::atomic<std::uint32_t> _wanted{0};   // the number of the last wait
    std::atomic<std::uint32_t> _reached{0};  // the number of the wait that has been satisfied last

    nxMutex _roundMutex;
    std::unique_ptr<Round> _round;
    std::vector<nxLog> _early;  // records from before the first device
    std::size_t _earlyBytes = 0;
    std::atomic<bool> _hadDevices{false};
    bool _unflushed = false;
    std::int64_t _lastFlush = 0;
    std::int64_t _nextMaintenance = 0;
    std::atomic<std::int64_t> _flushInterval{1'000'000'000};

    std::atomic<unsigned> _inHand{0};
    std::uint64_t _reportedDrops = 0;
    std::uint64_t _reportedWaits = 0;
    std::int64_t _lastReport = 0;
};

#endif
