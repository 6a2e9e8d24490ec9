#ifndef NXTICK_FILECOPY_H
#define NXTICK_FILECOPY_H

#include <sys/stat.h>

namespace nxtick
{
/// Gives a new file owner, group, permissions and access list of the one that it is to replace. The bits that run a
/// program as somebody else are not among them.
/// @param status of @p from.
/// @return false when the system grants not all of it; then @p to may be readable by fewer people, never by more.
bool CopyAccess(int from, const struct stat& status, int to);

/// Makes the content of @p to that of @p from. The room is taken before anything is overwritten, so that a full disk
/// leaves the old content.
/// @param isTouched whether the old content may be damaged.
/// @return false, with errno set, when that failed.
bool CopyContent(int from, int to, bool& isTouched);
}  // namespace nxtick

#endif
