// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGLEVELFILE_H
#define CORE_LOG_INTERNAL_NXLOGLEVELFILE_H

#include <atomic>
#include <cstddef>
#include <string>

#include "core/enum/nxEnumValue.h"
#include "core/platform/nxFileVersion.h"
#include "core/thread/nxMutex.h"

/// The level file: looks whether it has changed, and has its rules enforced. Never destroyed.
///
/// Invariant: the rules in force are those of the last content that could be understood since Watch(), and none after a
/// look that found no file. Each change of the file is told in the log once.
///
/// Errors: told in the log; std::bad_alloc is thrown by Watch() alone. Threads: any.
class nxLogLevelFile
{
public:
    static constexpr std::size_t LargestFile = 65'535;  ///< Bytes.

    static nxLogLevelFile& GetInstance() noexcept;

    /// From now on the file is @p path, empty for none. Looks at it at once.
    void Watch(const std::string& path);
    /// @return the path; empty for none.
    std::string GetPath();
    /// Whether there is a path, so that Look() has something to do.
    bool IsWatched() const noexcept { return _isWatched.load(std::memory_order_relaxed); }

    /// Does what a change of the file asks for. The log's thread calls it once a second.
    void Look() noexcept;

    void BeforeFork() noexcept;
    void AfterForkInParent() noexcept;
    /// The child looks at the same file, but at none if another thread was inside this object for too long.
    void AfterForkInChild() noexcept NX_NO_THREAD_SAFETY_ANALYSIS;

private:
    /// What the log is to be told.
    struct Report
    {
        nxEnumValue level = NX_ENUM_UNDEFINED;
        unsigned line = 0;
        std::string text;
    };
    struct Seen
    {
        bool isAbsent = false;
        bool mustReadAgain = false;
        int error = 0;
        nxFileVersion version;
        std::string content;
    };

    nxLogLevelFile() noexcept = default;
    ~nxLogLevelFile() = delete;

    Report _LookUnderLock() NX_REQUIRES(_mutex);
    Report _Read() NX_REQUIRES(_mutex);
    Report _TellAbsence() NX_REQUIRES(_mutex);
    Report _TellError(int error) NX_REQUIRES(_mutex);
    std::string _GetName() const NX_REQUIRES(_mutex);

    nxMutex _mutex;
    std::string _path NX_GUARDED_BY(_mutex);
    Seen _seen NX_GUARDED_BY(_mutex);  // at the last look; empty before it
    // Relaxed: only whether it is worth while to take the mutex.
    std::atomic<bool> _isWatched{false};
    bool _isLockedForFork = false;  // by the thread that forks
};

#endif
