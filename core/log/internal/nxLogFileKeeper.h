// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFILEKEEPER_H
#define CORE_LOG_INTERNAL_NXLOGFILEKEEPER_H

#include <cstddef>
#include <cstdint>

#include "core/log/internal/nxLogFileCompressor.h"
#include "core/log/internal/nxLogFileSurvey.h"
#include "core/log/internal/nxLogOldestFiles.h"
#include "core/log/nxLogRetention.h"

/// Keeps the log directory within the limits of nxLogRetention, and has closed files compressed.
///
/// A pass walks through the directory, counts, and removes the oldest files. It is done in slices, so that the log's
/// thread is never held up for longer than a slice and one call of the system. A pass remembers a limited number
/// of the oldest files; if more are to be removed, another pass follows at once.
///
/// Invariant: a file is removed only under a claim, so that no process has it open. What was removed meanwhile by another
/// process counts as removed, so that processes that work at the same time do not remove more than is asked for.
///
/// Threads: none. Errors: a file that cannot be removed stays; without memory a pass is given up.
class nxLogFileKeeper
{
public:
    void Set(const nxLogFileSurvey::Place& place, const nxLogRetention& retention);
    /// Has a pass begin with the next Work().
    void Begin() { _isDue = true; }
    /// Works for @p nanoseconds, one step at least if there is something to do.
    void Work(std::int64_t nanoseconds) noexcept;
    /// Gives up the pass and closes the directories.
    void Stop() noexcept;
    /// The child of a fork has a pass of its own.
    void ForgetInChild() noexcept;

private:
    enum class Phase
    {
        Idle,
        Counting,
        Removing
    };

    void _BeginPass(std::int64_t now);
    void _Step();
    void _Count();
    void _RemoveNext();
    void _EndCounting();
    void _CompressNext(std::int64_t now);

    bool _HasLimit() const { return _retention.files != 0 || _retention.megabytes != 0 || _retention.days != 0; }
    bool _IsTooOld(const nxLogKeptFile& file) const;
    bool _IsTooMuch() const;
    bool _Remove(const nxLogKeptFile& file);
    void _RemoveFolder() const;

    static constexpr std::size_t _mostRemembered = 131'072;  // five mebibytes
    static constexpr std::size_t _mostToCompress = 64;

    nxLogFileSurvey::Place _place;
    nxLogRetention _retention;
    Phase _phase = Phase::Idle;
    bool _isDue = false;
    std::int64_t _nextPass = 0;  // on the monotonic clock

    nxLogFileSurvey _survey;
    std::int64_t _now = 0;    // of the pass, in seconds since 1970
    std::int32_t _today = 0;  // in days
    std::uint64_t _files = 0;
    std::uint64_t _bytes = 0;
    bool _hasRemoved = false;
    nxLogOldestFiles _oldest{_mostRemembered};

    nxLogFileCompressor _compressor;
    nxLogOldestFiles _toCompress{_mostToCompress};
    nxLogKeptFile _compressAfter;  // this file in the next pass, when not all found room
};

#endif
