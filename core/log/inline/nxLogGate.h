// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGGATE_H
#define CORE_LOG_INLINE_NXLOGGATE_H

#include <array>
#include <atomic>

#include "core/enum/nxLogLevelEnum.h"
#include "core/log/inline/nxLogSource.h"
#include "core/nxExport.h"

/// Decides whether a statement reports. Use the macros of nxLogMacros.h.
///
/// Invariant: there is one verdict for each level. It is "no" below the lowest level that the log or a rule of nxLogLevels
/// wants, "yes" from the level on that all of them want, and "ask the site" between. Without rules no verdict is "ask".
///
/// Errors: none. Threads: any.
class NX_CORE_API nxLogGate
{
public:
    nxLogGate() = delete;

    /// Whether a record of @p level is wanted. @param getSite returns the nxLogSite of the statement. It is called only
    /// where the site decides.
    template <class GetSite>
    [[gnu::always_inline]] static bool Wants(nxEnumValue level, const GetSite& getSite) noexcept
    {
        return level < _levels && _Wants(level, getSite);
    }
    /// @copydoc Wants(nxEnumValue, const GetSite&)
    template <class GetSite>
    [[gnu::always_inline]] static bool Wants(const nxLogLevelEnum& level, const GetSite& getSite) noexcept
    {
        return _Wants(level.GetEnumValue(), getSite);
    }

private:
    friend class nxLogLevelState;

    // A level enumeration holds no larger numbers, so that it needs no comparison.
    static constexpr unsigned _levels = 64;
    static_assert(nxLogLevelEnum::MaximumValue < _levels);

    template <class GetSite>
    [[gnu::always_inline]] static bool _Wants(nxEnumValue level, const GetSite& getSite) noexcept
    {
        const signed char verdict = _verdicts[level % _levels].load(std::memory_order_relaxed);
        return verdict > 0 || (verdict != 0 && _Ask(level, getSite()));
    }
    [[gnu::noinline]] static bool _Ask(nxEnumValue level, nxLogSite& site) noexcept;

    // By the number of the level: 1 for yes, 0 for no, -1 for ask. One cache line, which all statements read, and which is
    // written when levels change. Relaxed: a statement that runs meanwhile may go by either level. They are stored in the
    // default order, see nxLogLevelState::_Publish().
    alignas(64) static std::array<std::atomic<signed char>, _levels> _verdicts;
};

#endif
