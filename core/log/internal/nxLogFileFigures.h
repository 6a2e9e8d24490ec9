// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFILEFIGURES_H
#define CORE_LOG_INTERNAL_NXLOGFILEFIGURES_H

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>

/// What the file device has done with files since the process began.
///
/// Errors: none. Threads: any. It calls no other part of the log.
class nxLogFileFigures
{
public:
    nxLogFileFigures() = delete;

    enum Figure : std::size_t
    {
        Opened,          ///< Files that were begun.
        Rotations,       ///< Of these, the ones that took the place of a file that was still open.
        OpeningErrors,   ///< Times that no file could be begun, each counted once until it has ended.
        WritingErrors,   ///< Times that a file could not be written, each counted once until it has ended.
        Removed,         ///< Files that a limit of nxLogRetention has removed.
        RemovedBytes,    ///< Their size.
        Compressed,      ///< Files that were compressed.
        CompressErrors,  ///< Files that could not be compressed, each counted at every attempt.
        Count
    };

    static void Add(Figure figure, std::uint64_t count = 1) noexcept
    {
        _figures[figure].fetch_add(count, std::memory_order_relaxed);
    }
    static std::uint64_t Get(Figure figure) noexcept { return _figures[figure].load(std::memory_order_relaxed); }

    /// A forked child begins at 0.
    static void AfterForkInChild() noexcept
    {
        for (std::atomic<std::uint64_t>& figure : _figures)
            figure.store(0, std::memory_order_relaxed);
    }

private:
    // Relaxed: figures, which order no other memory.
    static inline constinit std::array<std::atomic<std::uint64_t>, Count> _figures{};
};

#endif
