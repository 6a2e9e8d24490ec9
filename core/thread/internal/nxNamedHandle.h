// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_THREAD_INTERNAL_NXNAMEDHANDLE_H
#define CORE_THREAD_INTERNAL_NXNAMEDHANDLE_H

#include <string>

#include "core/platform/inline/nxNative.h"

/// Opens named locks for the classes that hold them. It reports to the log that named objects cannot be opened, or that
/// their file was removed: once, until it works again.
class nxNamedHandle
{
public:
    nxNamedHandle() = delete;

    /// @return null, with errno, as nxNamedLocks. Throws nothing.
    static nxNamedMutex* OpenMutex(const std::string& name) noexcept;
    static nxNamedSemaphore* OpenSemaphore(const std::string& name, unsigned initialCount,
                                           unsigned maximumCount) noexcept;
};

#endif
