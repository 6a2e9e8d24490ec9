// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGSOURCETABLE_H
#define CORE_LOG_INTERNAL_NXLOGSOURCETABLE_H

#include <map>
#include <string_view>
#include <utility>

#include "core/log/inline/nxLogSource.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutex.h"

/// The places of all reporting statements that have run. It grows with the code, not with time. Never destroyed.
///
/// Invariant: a place that was kept is never changed and never freed, so that queued records may point to it.
///
/// Threads: any.
class nxLogSourceTable
{
public:
    static nxLogSourceTable& GetInstance() noexcept;

    /// @return the place, the same object for equal arguments. Throws std::bad_alloc.
    const nxLogSource* Keep(const char* file, unsigned line);

    void BeforeFork() noexcept { nxForkMutex::Take(_mutex); }
    void AfterForkInParent() noexcept { nxForkMutex::GiveBack(_mutex); }
    void AfterForkInChild() noexcept;

private:
    using Key = std::pair<std::string_view, unsigned>;

    nxLogSourceTable() noexcept = default;
    ~nxLogSourceTable() = delete;

    nxMutex _mutex;
    std::map<Key, nxLogSource> _sources NX_GUARDED_BY(_mutex);
};

#endif
