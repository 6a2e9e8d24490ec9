// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXPRODUCTTREESELECTABLENODEBASEBITMASK_H
#define CORE_ENUM_NXPRODUCTTREESELECTABLENODEBASEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The levels of the product tree at which a user may select a node.
class NX_CORE_API nxProductTreeSelectableNodeBaseBitMask final
    : public nxTypedBitMask<nxProductTreeSelectableNodeBaseBitMask, nxBitMask>
{
    NX_BIT_MASK(nxProductTreeSelectableNodeBaseBitMask);
};

#endif
