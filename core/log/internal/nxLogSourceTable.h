// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGSOURCETABLE_H
#define CORE_LOG_INTERNAL_NXLOGSOURCETABLE_H

#include <atomic>
#include <map>
#include <memory>
#include <string_view>
#include <tuple>

#include "core/enum/nxEnumValue.h"
#include "core/log/inline/nxLogSource.h"
#include "core/log/internal/nxLogLevelRules.h"
#include "core/thread/internal/nxForkMutex.h"
#include "core/thread/nxMutex.h"

/// A place with what the library alone knows of it.
///
/// Invariant: every nxLogSource is part of one.
struct nxLogKeptSource : nxLogSource
{
    constexpr nxLogKeptSource(const nxLogSource& source, bool isOld, const char* jsonText, std::size_t size) noexcept
        : nxLogSource(source), isOfOldProgram(isOld), json(jsonText), jsonSize(size)
    {
    }

    static const nxLogKeptSource& Of(const nxLogSource& source) noexcept
    {
        return static_cast<const nxLogKeptSource&>(source);
    }

    /// The level of the rule that fits the place best; NX_ENUM_UNDEFINED where none fits. Relaxed: a statement
    /// that runs while rules change may go by either level.
    std::atomic<nxEnumValue> level{NX_ENUM_UNDEFINED};
    /// Whether the program was built with version 1.0: its statements know neither rules nor the folders of the file.
    bool isOfOldProgram;

    const char* json;  ///< What follows the level and thread in a line of JSON: `,"source":"nxMutex:107","message":"`.
    std::size_t jsonSize;  ///< Bytes of it. At least JsonRoom bytes may be read.

    static constexpr std::size_t JsonRoom = 64;  ///< Copying this many costs less than the right number.
};

/// The places of all reporting statements that have run. It grows with the code, not with time. Never destroyed.
///
/// Invariant: a place that was kept is never changed, but for its level, and never freed, so that queued records may point
/// to it. Its level is that of the rules.
///
/// Threads: any.
class nxLogSourceTable
{
public:
    static nxLogSourceTable& GetInstance() noexcept;

    /// @param folders bytes in front of @p file that belong to its path. @param isOld whether the program was built with
    ///        version 1.0; there are no folders then.
    /// @return the place, the same object for equal arguments. Throws std::bad_alloc.
    const nxLogSource* Keep(const char* file, unsigned line, std::size_t folders, bool isOld);

    /// Gives all places, and those that are kept from now on, their levels. Null for no rules.
    void SetRules(std::shared_ptr<const nxLogLevelRules> rules) noexcept;
    /// Whether a program that was built with version 1.0 has reported.
    bool HasOldPrograms() const noexcept { return _hasOldPrograms.load(std::memory_order_relaxed); }

    void BeforeFork() noexcept { nxForkMutex::Take(_mutex); }
    void AfterForkInParent() noexcept { nxForkMutex::GiveBack(_mutex); }
    void AfterForkInChild() noexcept;

private:
    using Key =
        std::tuple<std::string_view, unsigned, std::size_t, bool>;  // the path, and the other arguments of Keep()

    nxLogSourceTable() noexcept = default;
    ~nxLogSourceTable() = delete;

    nxMutex _mutex;
    std::map<Key, nxLogKeptSource> _sources NX_GUARDED_BY(_mutex);
    std::shared_ptr<const nxLogLevelRules> _rules NX_GUARDED_BY(_mutex);
    // Relaxed: stored before the first record of such a program is published, and loaded after that record was seen.
    std::atomic<bool> _hasOldPrograms{false};
};

#endif
