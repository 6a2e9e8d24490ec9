#ifndef CORE_PLATFORM_NXENVIRONMENT_H
#define CORE_PLATFORM_NXENVIRONMENT_H

#include <string>

/// The environment of the running process.
///
/// Threads: the system's environment has no lock that the C library shares with us, so a reader and a writer at the
/// same moment would crash. nxCmdLineArgs calls both operations under its mutex; everybody else asks nxCmdLineArgs.
class nxEnvironment
{
public:
    nxEnvironment() = delete;

    /// @return a copy of the variable's value; empty when it is not set or there is no memory for the copy.
    static std::string Get(const std::string& name);

    /// Sets a variable for this process and the children it starts later.
    /// @param name not empty, without '=' and NUL; @param value without NUL.
    /// @return whether the system accepted it.
    static bool Set(const std::string& name, const std::string& value);

    /// Whether the program has rights that whoever started it need not have: a set-user-ID or set-group-ID program, or
    /// one with file capabilities. The environment is then a stranger's, and what it says about files is not heeded.
    /// The same answer for the life of the process; any thread may ask.
    static bool IsSecureExecution();
};

#endif
