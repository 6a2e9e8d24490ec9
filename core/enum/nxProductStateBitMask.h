// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXPRODUCTSTATEBITMASK_H
#define CORE_ENUM_NXPRODUCTSTATEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The states of trading in a product; several may hold at once.
class NX_CORE_API nxProductStateBitMask final : public nxTypedBitMask<nxProductStateBitMask, nxBitMask>
{
    NX_BIT_MASK(nxProductStateBitMask);
};

#endif
