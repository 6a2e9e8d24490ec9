// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_FILECOPY_H
#define NXTICK_FILECOPY_H

#include <sys/stat.h>

namespace nxtick
{
/// Gives a new file the owner, group, permissions and access list of the one that it is to replace, without the
/// set-user-ID and set-group-ID bits.
/// @param status of @p from.
/// @return false when the system does not grant all of it; then fewer users may read @p to, never more.
bool CopyAccess(int from, const struct stat& status, int to);

/// Copies the content of @p from into @p to. Space is allocated before anything is overwritten, so that a full disk
/// leaves the old content.
/// @param isTouched whether the old content may be damaged.
/// @return false, with errno set, when that failed.
bool CopyContent(int from, int to, bool& isTouched);
}  // namespace nxtick

#endif
