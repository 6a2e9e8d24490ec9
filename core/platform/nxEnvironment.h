// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXENVIRONMENT_H
#define CORE_PLATFORM_NXENVIRONMENT_H

#include <span>
#include <string>

/// The environment of the running process.
///
/// Threads: the C library shares no lock for the environment, so a reader crashes beside a writer. nxCmdLineArgs calls
/// Find(), Set() and GetArray() under its mutex. All other code asks nxCmdLineArgs, except for this folder, which is below
/// it and calls Copy().
class nxEnvironment
{
public:
    nxEnvironment() = delete;

    /// Copies a variable's value; the copy is empty when there is no memory for it.
    /// @return whether the variable is set; @p value is otherwise untouched.
    static bool Find(const std::string& name, std::string& value);

    /// Copies a variable's value, NUL included, without allocating, without waiting, and safe beside Set().
    /// @return 0; ENOENT when it is not set, EFBIG when @p value is too small, EBUSY while another thread is in Copy() or
    ///         Set().
    [[nodiscard]] static int Copy(const char* name, std::span<char> value) noexcept;

    /// Keeps other threads out of Copy() and Set() for as long as it lives, around a function of the C library that reads the
    /// environment by itself. Waits until they have left; not for ever, because a signal handler may have interrupted one.
    class Reading
    {
    public:
        Reading() noexcept;
        ~Reading();
        Reading(const Reading&) = delete;
        Reading& operator=(const Reading&) = delete;

    private:
        bool _isOurs = false;
    };

    /// Called in a forked child: a thread of the parent that was in Copy() or Set() does not exist there.
    static void AfterForkInChild() noexcept;

    /// @return the system's array of the variables, each "name=value", with a null pointer at its end. Setting a variable
    ///         may replace the array.
    static char** GetArray();

    /// Sets a variable for this process and the children it starts later.
    /// @param name not empty, without '=' and NUL; @param value without NUL.
    /// @return whether the system accepted it.
    static bool Set(const std::string& name, const std::string& value);

    /// Whether the program may have more rights than the user who started it: a set-user-ID or set-group-ID program, or
    /// one with file capabilities. Its environment is then not trusted with the places of files.
    /// The same answer for the life of the process; any thread may ask.
    static bool IsSecureExecution();
};

#endif
