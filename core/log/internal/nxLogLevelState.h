// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGLEVELSTATE_H
#define CORE_LOG_INTERNAL_NXLOGLEVELSTATE_H

#include <memory>
#include <string_view>

#include "core/log/internal/nxLogLevelRules.h"
#include "core/log/internal/nxLogSourceTable.h"
#include "core/thread/nxMutex.h"

/// The levels in force: for all, and by source. Never destroyed.
///
/// The program has a level for all and rules. While a level file is in force, its rules hold in place of the program's, and
/// its level for all, if it names one, in place of the program's.
///
/// Invariant: when no thread is changing a level, the verdicts of nxLogGate, the threshold of nxLogManager and the levels of
/// nxLogSourceTable follow from the levels in force.
///
/// Errors: std::bad_alloc is thrown before anything has changed. Threads: any; SetLevelForAll() also from signal handlers.
class nxLogLevelState
{
public:
    using Rules = std::shared_ptr<const nxLogLevelRules>;

    static nxLogLevelState& GetInstance() noexcept;

    /// Sets the program's level for all. Takes no lock.
    static void SetLevelForAll(nxEnumValue level) noexcept;
    /// The level for all that is in force.
    static nxEnumValue GetLevelForAll() noexcept;
    /// Whether a rule is in force.
    static bool HasRules() noexcept;

    /// Sets the program's rules, and its level for all where @p rules names one. Null for none.
    void SetRules(Rules rules) noexcept;
    /// Adds one rule to the program's. @param fault says what is wrong.
    [[nodiscard]] nxErrorEnum AddRule(std::string_view where, nxEnumValue level, std::string& fault);
    /// Sets what the level file says; null when there is no file.
    void SetFileRules(Rules rules) noexcept;
    /// @return the rules in force; null for none.
    Rules GetRules() noexcept;

    /// The level from which on the source at @p path reports.
    nxEnumValue GetLevelFor(std::string_view path) noexcept;
    /// Whether a record of @p level is wanted that names @p path as its source.
    static bool ShouldLog(nxEnumValue level, std::string_view path) noexcept;
    /// The same for a source that the log keeps. Takes no lock.
    static bool ShouldLog(nxEnumValue level, const nxLogSource& source) noexcept;
    /// Whether a queued record is not wanted: its program, built with version 1.0, did not know the rules.
    static bool IsUnwanted(nxEnumValue level, const nxLogSource* source) noexcept;

    void BeforeFork() noexcept;
    void AfterForkInParent() noexcept;
    void AfterForkInChild() noexcept;

private:
    nxLogLevelState() noexcept = default;
    ~nxLogLevelState() = delete;

    const Rules& _GetInForce() const NX_REQUIRES(_mutex) { return _fileRules != nullptr ? _fileRules : _rules; }
    void _Enforce() noexcept NX_REQUIRES(_mutex);
    static void _Publish() noexcept;
    template <class Change>
    static void _Change(const Change& change) noexcept;

    nxMutex _mutex;
    Rules _rules NX_GUARDED_BY(_mutex);
    Rules _fileRules NX_GUARDED_BY(_mutex);
};

#endif
