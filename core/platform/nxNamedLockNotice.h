// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_PLATFORM_NXNAMEDLOCKNOTICE_H
#define CORE_PLATFORM_NXNAMEDLOCKNOTICE_H

/// What the caller of nxNamedLocks reports, once each time that it begins.
enum class nxNamedLockNotice
{
    None,
    Refused,  ///< The system refuses named objects; errno has the reason.
    Removed   ///< Their place was removed: processes that come later share nothing with what is open.
};

#endif
