// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXDIRECTORY_H
#define CORE_PLATFORM_NXDIRECTORY_H

#include <string>

#include "core/nxExport.h"
#include "core/platform/nxDescriptor.h"

/// A directory that is held open. Files are made in this directory even if its name is removed or changed meanwhile.
///
/// - Errors: operations return the system's error number, 0 when they succeed.
/// - Rights: directories that are made give all rights to the owner and those of reading to the group; in secure
///   execution (see nxEnvironment) to the owner alone.
/// - Ownership: as nxDescriptor. Threads: like an int.
class NX_CORE_API nxDirectory
{
public:
    /// Opens a directory whose path comes from a trusted source. Missing directories of the path are made, and links are
    /// followed.
    [[nodiscard]] int Open(const std::string& path);

    /// Continues into the subdirectory of this name, which is made if it is missing. An entry that another user may have
    /// put there is refused: a link (ELOOP), and a directory that belongs neither to this user nor to root, or to which
    /// everybody may write without the sticky bit (EPERM). Unchanged when it fails.
    [[nodiscard]] int Enter(const std::string& name);

    /// Opens a directory like Open(), but makes none.
    [[nodiscard]] int OpenExisting(const std::string& path);
    /// Opens the subdirectory of @p parent that Enter() would continue into, but makes none.
    [[nodiscard]] int OpenExisting(const nxDirectory& parent, const std::string& name);

    /// Whether a directory is open and no other code of the process has closed it.
    bool IsSound() const;

    /// Whether others may remove or replace the files of this user: whether one of the directories that were opened or
    /// entered has another owner or can be written by the group or by everybody.
    bool IsOpenToOthers() const { return _isOpenToOthers; }

    /// The descriptor for openat() and similar calls.
    int GetDescriptor() const { return _descriptor.Get(); }

private:
    int _EnterExisting(const nxDirectory& parent, const std::string& name);
    int _Take(nxDescriptor&& descriptor);

    nxDescriptor _descriptor;
    bool _isOpenToOthers = false;
};

#endif
