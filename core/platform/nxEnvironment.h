#ifndef CORE_PLATFORM_NXENVIRONMENT_H
#define CORE_PLATFORM_NXENVIRONMENT_H

#include <span>
#include <string>

/// The environment of the running process.
///
/// Threads: the system's environment has no lock that the C library shares with us, so a reader and a writer at the
/// same moment would crash. nxCmdLineArgs calls Get() and Set() under its mutex, and everybody else asks nxCmdLineArgs,
/// but for those below it, who call Copy().
class nxEnvironment
{
public:
    nxEnvironment() = delete;

    /// @return a copy of the variable's value; empty when it is not set or there is no memory for the copy.
    static std::string Get(const std::string& name);

    /// Copies a variable's value, NUL included, without allocating, without waiting, and safe beside Set().
    /// @return 0; ENOENT when it is not set, EFBIG when @p value is too small, EBUSY while another thread is in here.
    [[nodiscard]] static int Copy(const char* name, std::span<char> value) noexcept;

    /// Called in a forked child, where a thread of the parent that was in Copy() does not exist.
    static void AfterForkInChild() noexcept;

    /// @return the system's array of the variables, each "name=value", with a null pointer at its end. Setting a variable
    ///         may replace the array.
    static char** GetArray();

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
