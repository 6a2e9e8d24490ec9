// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXATTRIBUTETREEDRILLDOWNBITMASK_H
#define CORE_ENUM_NXATTRIBUTETREEDRILLDOWNBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How a row of a tree on a screen can be expanded.
class NX_CORE_API nxAttributeTreeDrilldownBitMask final
    : public nxTypedBitMask<nxAttributeTreeDrilldownBitMask, nxBitMask>
{
    NX_BIT_MASK(nxAttributeTreeDrilldownBitMask);
};

#endif
