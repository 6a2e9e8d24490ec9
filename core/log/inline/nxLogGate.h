// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INLINE_NXLOGGATE_H
#define CORE_LOG_INLINE_NXLOGGATE_H

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
        const unsigned index = level - nxLogLevelEnum::MinimumValue;
        if (index >= _levels)
            return false;
        const signed char verdict = _verdicts[index].load(std::memory_order_relaxed);
        return verdict > 0 || (verdict < 0 && _Ask(level, getSite()));
    }
    /// @copydoc Wants(nxEnumValue, const GetSite&)
    template <class GetSite>
    [[gnu::always_inline]] static bool Wants(const nxLogLevelEnum& level, const GetSite& getSite) noexcept
    {
        return Wants(level.GetEnumValue(), getSite);
    }

    /// Sets the verdicts: "no" below @p lowest, "yes" from @p certain on, which is not below it.
    static void Set(nxEnumValue lowest, nxEnumValue certain) noexcept;

private:
    [[gnu::cold, gnu::noinline]] static bool _Ask(nxEnumValue level, nxLogSite& site) noexcept;

    static constexpr unsigned _levels = nxLogLevelEnum::MaximumValue - nxLogLevelEnum::MinimumValue;

    // 1 for yes, 0 for no, -1 for ask. All statements read it, and it is written when levels change.
    alignas(64) static constinit std::atomic<signed char> _verdicts[_levels];
};

#endif
