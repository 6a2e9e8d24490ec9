// SPDX-License-Identifier: Apache-2.0
#ifndef NXTICK_FILECOPY_H
#define NXTICK_FILECOPY_H

namespace nxtick
{
/// Copies the content of @p from into @p to. Space is allocated before anything is overwritten, so that a full disk
/// leaves the old content.
/// @param isTouched whether the old content may be damaged.
/// @return false, with errno set, when that failed.
bool CopyContent(int from, int to, bool& isTouched);
}  // namespace nxtick

#endif
