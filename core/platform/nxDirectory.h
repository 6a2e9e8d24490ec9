#ifndef CORE_PLATFORM_NXDIRECTORY_H
#define CORE_PLATFORM_NXDIRECTORY_H

#include <string>

#include "core/nxExport.h"
#include "core/platform/nxDescriptor.h"

/// A directory that is held open: what is made in it is made there, whatever becomes of its name meanwhile.
///
/// - Errors: operations return the system's error number, 0 when they succeed.
/// - Directories that are made are for the owner, and for reading by the group; in secure execution (see nxEnvironment)
///   for the owner alone.
/// - Ownership: as of nxDescriptor. Threads: like an int.
class NX_CORE_API nxDirectory
{
public:
    /// Opens a directory that somebody entitled to has named. Those of it that are missing are made, and links are
    /// followed.
    [[nodiscard]] int Open(const std::string& path);

    /// Goes on into the directory of this name in it, which is made if it is missing. What another user may have put
    /// there is refused: a link (ELOOP), and a directory that belongs neither to this user nor to root, or to which
    /// everybody may write without the sticky bit (EPERM). Unchanged when it fails.
    [[nodiscard]] int Enter(const std::string& name);

    /// Whether others may remove or exchange what this user puts there: the group, everybody or another owner, in a
    /// directory that was opened or entered on the way.
    bool IsOpenToOthers() const { return _isOpenToOthers; }

    /// A number for openat() and its like.
    int GetDescriptor() const { return _descriptor.Get(); }

private:
    int _Take(nxDescriptor&& descriptor);

    nxDescriptor _descriptor;
    bool _isOpenToOthers = false;
};

#endif
