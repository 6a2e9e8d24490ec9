// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXFIXMDQUOTECONDITIONBITMASK_H
#define CORE_ENUM_NXFIXMDQUOTECONDITIONBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The conditions of a quote in market data; the text of each includes its code in messages.
class NX_CORE_API nxFixMDQuoteConditionBitMask final : public nxTypedBitMask<nxFixMDQuoteConditionBitMask, nxBitMask>
{
    NX_BIT_MASK(nxFixMDQuoteConditionBitMask);
};

#endif
