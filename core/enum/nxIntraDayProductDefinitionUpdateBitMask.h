// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXINTRADAYPRODUCTDEFINITIONUPDATEBITMASK_H
#define CORE_ENUM_NXINTRADAYPRODUCTDEFINITIONUPDATEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The changes of a product's definition during the day.
class NX_CORE_API nxIntraDayProductDefinitionUpdateBitMask final
    : public nxTypedBitMask<nxIntraDayProductDefinitionUpdateBitMask, nxBitMask>
{
    NX_BIT_MASK(nxIntraDayProductDefinitionUpdateBitMask);
};

#endif
