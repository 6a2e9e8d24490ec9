// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXATTRIBUTEHIGHLIGHTBITMASK_H
#define CORE_ENUM_NXATTRIBUTEHIGHLIGHTBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// Why a displayed attribute is highlighted.
class NX_CORE_API nxAttributeHighlightBitMask final : public nxTypedBitMask<nxAttributeHighlightBitMask, nxBitMask>
{
    NX_BIT_MASK(nxAttributeHighlightBitMask);
};

#endif
