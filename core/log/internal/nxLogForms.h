// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_LOG_INTERNAL_NXLOGFORMS_H
#define CORE_LOG_INTERNAL_NXLOGFORMS_H

#include <atomic>

#include "core/log/internal/nxLogKeptStyle.h"
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
    static nxLogKeptStyle _file;
    static nxLogKeptStyle _console;                         // Full for all forms of text
    static std::atomic<nxLogFormSettings::Colour> _colour;  // relaxed: a setting, which orders no other memory
};

#endif
