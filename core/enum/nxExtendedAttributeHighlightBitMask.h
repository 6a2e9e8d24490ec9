// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXEXTENDEDATTRIBUTEHIGHLIGHTBITMASK_H
#define CORE_ENUM_NXEXTENDEDATTRIBUTEHIGHLIGHTBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// Further reasons why a displayed attribute is highlighted; see nxAttributeHighlightBitMask.
class NX_CORE_API nxExtendedAttributeHighlightBitMask final
    : public nxTypedBitMask<nxExtendedAttributeHighlightBitMask, nxBitMask>
{
    NX_BIT_MASK(nxExtendedAttributeHighlightBitMask);
};

#endif
