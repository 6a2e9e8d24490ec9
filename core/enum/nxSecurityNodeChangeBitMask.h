// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXSECURITYNODECHANGEBITMASK_H
#define CORE_ENUM_NXSECURITYNODECHANGEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The changes of a node of the tree of users and accounts.
class NX_CORE_API nxSecurityNodeChangeBitMask final : public nxTypedBitMask<nxSecurityNodeChangeBitMask, nxBitMask>
{
    NX_BIT_MASK(nxSecurityNodeChangeBitMask);
};

#endif
