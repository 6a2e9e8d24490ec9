// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PROCESS_NXAPPLICATIONNAME_H
#define CORE_PROCESS_NXAPPLICATIONNAME_H

#include <string>

/// The name that the application gave itself, for nxApplicationData, which sets it, and for the log below that, which
/// names files after it. Threads: any thread at any time, forked children included.
class nxApplicationName
{
public:
    nxApplicationName() = delete;

    /// @return a copy of the name; empty until it was set.
    static std::string Get();
    static void Set(const std::string& name);
};

#endif
