// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXUSERORDERFLAGSBITMASK_H
#define CORE_ENUM_NXUSERORDERFLAGSBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// Thirty flags on an order, whose meaning users define.
///
/// The two top bits are registered as well; the null bit carries the identifier of flag 29 once more, which is kept
/// because stored settings know it and which is never printed.
class NX_CORE_API nxUserOrderFlagsBitMask final : public nxTypedBitMask<nxUserOrderFlagsBitMask, nxBitMask>
{
    NX_BIT_MASK(nxUserOrderFlagsBitMask);
};

#endif
