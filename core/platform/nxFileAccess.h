// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXFILEACCESS_H
#define CORE_PLATFORM_NXFILEACCESS_H

#include <string>

#include "core/nxExport.h"

struct stat;

/// Who may read and write a file. Errors are the system's numbers, 0 for success. Threads: any.
class NX_CORE_API nxFileAccess
{
public:
    nxFileAccess() = delete;

    /// What becomes of the owner where the process may not give the file away.
    enum class Owner
    {
        Kept,    ///< That is an error.
        OrSelf,  ///< The file stays with the user of the process.
    };

    /// Gives a new file the owner, group, permissions and access list of the one that it is to replace, without the
    /// set-user-ID and set-group-ID bits. When that fails, fewer users may read the new file, never more, provided that its
    /// mode gave no rights to others before.
    /// @param from a descriptor of the old file that is open for reading or writing; negative for the file at @p path.
    /// @param path of the old file, which is no link; only where there is no descriptor.
    /// @param status of the old file.
    /// @param file a descriptor of the new one, which belongs to the user of the process.
    [[nodiscard]] static int Copy(int from, const std::string& path, const struct stat& status, int file, Owner owner);

    /// Whether a link in this directory may be followed: where everybody may make links, only those of the user and of
    /// the directory's owner, even if the system itself does not enforce that.
    /// @param directory a descriptor. @param link the status of the link.
    [[nodiscard]] static bool MayFollow(int directory, const struct stat& link);
};

#endif
