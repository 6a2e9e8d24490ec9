// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PROCESS_NXENVIRONMENTCOPY_H
#define CORE_PROCESS_NXENVIRONMENTCOPY_H

#include <string>

/// The environment as nxCmdLineArgs::GetInstance() answers for it: the copy that Initialise() was given, and until then
/// the one that the system has.
///
/// nxCmdLineArgs holds the copy, under its mutex, and is above the log. What the log asks is therefore declared here
/// and defined in core/app/internal/nxEnvironmentCopy.cpp.
///
/// Threads: any thread at any time, in initialisers of static objects too. The calls take the mutex of nxCmdLineArgs.
class nxEnvironmentCopy
{
public:
    nxEnvironmentCopy() = delete;

    /// @return the variable's value; empty when it is not set.
    static std::string GetValue(const std::string& name);

    /// @return true for "TRUE" and "YES", false for "FALSE" and "NO", in any case; @p defaultValue for everything else.
    static bool GetBool(const std::string& name, bool defaultValue);
};

#endif
