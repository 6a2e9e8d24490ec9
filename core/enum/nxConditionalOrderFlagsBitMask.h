// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXCONDITIONALORDERFLAGSBITMASK_H
#define CORE_ENUM_NXCONDITIONALORDERFLAGSBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How the entry of a stop bracket is executed.
class NX_CORE_API nxConditionalOrderFlagsBitMask final
    : public nxTypedBitMask<nxConditionalOrderFlagsBitMask, nxBitMask>
{
    NX_BIT_MASK(nxConditionalOrderFlagsBitMask);
};

#endif
