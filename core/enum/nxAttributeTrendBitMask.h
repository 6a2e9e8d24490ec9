// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXATTRIBUTETRENDBITMASK_H
#define CORE_ENUM_NXATTRIBUTETRENDBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The direction in which a displayed price moved last.
class NX_CORE_API nxAttributeTrendBitMask final : public nxTypedBitMask<nxAttributeTrendBitMask, nxBitMask>
{
    NX_BIT_MASK(nxAttributeTrendBitMask);
};

#endif
