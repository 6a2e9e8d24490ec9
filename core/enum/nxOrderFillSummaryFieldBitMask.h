// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXORDERFILLSUMMARYFIELDBITMASK_H
#define CORE_ENUM_NXORDERFILLSUMMARYFIELDBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The fields that a summary of an order's fills carries.
class NX_CORE_API nxOrderFillSummaryFieldBitMask final
    : public nxTypedBitMask<nxOrderFillSummaryFieldBitMask, nxBitMask>
{
    NX_BIT_MASK(nxOrderFillSummaryFieldBitMask);
};

#endif
