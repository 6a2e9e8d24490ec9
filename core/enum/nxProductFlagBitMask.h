// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXPRODUCTFLAGBITMASK_H
#define CORE_ENUM_NXPRODUCTFLAGBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The properties of a product. TAS is trading at settlement.
class NX_CORE_API nxProductFlagBitMask final : public nxTypedBitMask<nxProductFlagBitMask, nxBitMask64>
{
    NX_BIT_MASK(nxProductFlagBitMask);
};

#endif
