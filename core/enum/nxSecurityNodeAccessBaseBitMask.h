// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXSECURITYNODEACCESSBASEBITMASK_H
#define CORE_ENUM_NXSECURITYNODEACCESSBASEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The rights of a user to a node of the tree of users and accounts.
class NX_CORE_API nxSecurityNodeAccessBaseBitMask final
    : public nxTypedBitMask<nxSecurityNodeAccessBaseBitMask, nxBitMask>
{
    NX_BIT_MASK(nxSecurityNodeAccessBaseBitMask);
};

#endif
