// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGKEPTSTYLE_H
#define CORE_LOG_INTERNAL_NXLOGKEPTSTYLE_H

#include <atomic>

#include "core/log/nxLogLineSink.h"

/// A style of lines that one thread may change while others read it. It is one word, because not every compiler reads an
/// atomic style without a library for that.
///
/// Errors: none. Threads: any. Relaxed: a style orders no other memory.
class nxLogKeptStyle
{
public:
    constexpr explicit nxLogKeptStyle(const nxLogLineStyle& style) : _word(_Pack(style)) {}

    void Set(const nxLogLineStyle& style) noexcept { _word.store(_Pack(style), std::memory_order_relaxed); }
    nxLogLineStyle Get() const noexcept
    {
        const unsigned word = _word.load(std::memory_order_relaxed);
        return {static_cast<nxLogLineStyle::Form>(word >> 1), (word & 1) != 0};
    }

private:
    static constexpr unsigned _Pack(const nxLogLineStyle& style)
    {
        return static_cast<unsigned>(style.form) << 1 | (style.carriageReturn ? 1 : 0);
    }
    std::atomic<unsigned> _word;  // relaxed, see above
};

#endif
