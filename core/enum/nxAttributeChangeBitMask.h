// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXATTRIBUTECHANGEBITMASK_H
#define CORE_ENUM_NXATTRIBUTECHANGEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The changes of a displayed attribute, and how the change is shown.
class NX_CORE_API nxAttributeChangeBitMask final : public nxTypedBitMask<nxAttributeChangeBitMask, nxBitMask>
{
    NX_BIT_MASK(nxAttributeChangeBitMask);
};

#endif
