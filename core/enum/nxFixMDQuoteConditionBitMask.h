#ifndef CORE_ENUM_NXFIXMDQUOTECONDITIONBITMASK_H
#define CORE_ENUM_NXFIXMDQUOTECONDITIONBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The conditions of a quote in market data; the code that stands for each in messages is part of its text.
class NX_CORE_API nxFixMDQuoteConditionBitMask final : public nxTypedBitMask<nxFixMDQuoteConditionBitMask, nxBitMask>
{
    NX_BIT_MASK(nxFixMDQuoteConditionBitMask);
};

#endif
