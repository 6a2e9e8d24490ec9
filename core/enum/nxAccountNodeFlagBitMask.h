// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXACCOUNTNODEFLAGBITMASK_H
#define CORE_ENUM_NXACCOUNTNODEFLAGBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How positions are kept for an account.
class NX_CORE_API nxAccountNodeFlagBitMask final : public nxTypedBitMask<nxAccountNodeFlagBitMask, nxBitMask64>
{
    NX_BIT_MASK(nxAccountNodeFlagBitMask);
};

#endif
