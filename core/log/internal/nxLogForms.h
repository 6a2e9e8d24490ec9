// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFORMS_H
#define CORE_LOG_INTERNAL_NXLOGFORMS_H

#include <atomic>

#include "core/log/nxLogFormSettings.h"

/// The forms of lines that the process has set, for the library's own devices.
///
/// Invariant: each device finds a style that was set as a whole.
///
/// Errors: none. Threads: any.
class nxLogForms
{
public:
    nxLogForms() = delete;

    static void Set(const nxLogFormSettings& settings) noexcept;
    static nxLogFormSettings Get() noexcept;

    static nxLogLineStyle GetFileStyle() noexcept { return _file.Get(); }
    /// @param form of lines of text.
    static nxLogLineStyle GetConsoleStyle(nxLogLineStyle::Form form) noexcept;

private:
    // A style in one word, because not every compiler reads a style as one.
    class Kept
    {
    public:
        constexpr explicit Kept(const nxLogLineStyle& style) : _word(_Pack(style)) {}
        void Set(const nxLogLineStyle& style) { _word.store(_Pack(style), std::memory_order_relaxed); }
        nxLogLineStyle Get() const
        {
            const unsigned word = _word.load(std::memory_order_relaxed);
            return {static_cast<nxLogLineStyle::Form>(word >> 1), (word & 1) != 0};
        }

    private:
        static constexpr unsigned _Pack(const nxLogLineStyle& style)
        {
            return static_cast<unsigned>(style.form) << 1 | (style.carriageReturn ? 1 : 0);
        }
        std::atomic<unsigned> _word;
    };

    static Kept _file;
    static Kept _console;  // Full for all forms of text
    static std::atomic<nxLogFormSettings::Colour> _colour;
};

#endif
