// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXZONEFILES_H
#define CORE_PLATFORM_NXZONEFILES_H

#include <span>
#include <string_view>

/// The files in which the system keeps its time zones. Threads: any. Nothing allocates memory.
class nxZoneFiles
{
public:
    nxZoneFiles() = delete;

    enum class Outcome
    {
        Read,
        NoFile,  ///< There is none, or it cannot be read or is larger than the room for it.
        Refused  ///< The name is too long, or the process must not open such a file.
    };

    /// Reads the file of the machine's own zone.
    /// @param room receives its bytes. @param content receives the part of @p room that they fill; else untouched.
    static Outcome ReadMachineZone(std::span<char> room, std::string_view& content);

    /// Reads the file that the C library would open for a value of the variable TZ: @p name is a path, or is looked for
    /// in the system's zone database or, where the variable TZDIR names one, in that.
    ///
    /// In secure execution the variable TZDIR counts for nothing, and a name that begins with '/' or holds ".." is
    /// refused.
    /// @param name not empty. @param room receives the file's bytes.
    /// @param content receives the part of @p room that they fill; otherwise it is untouched.
    static Outcome Read(std::string_view name, std::span<char> room, std::string_view& content);
};

#endif
