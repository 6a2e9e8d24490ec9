// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXORDERTRANSACTIONFLAGSBITMASK_H
#define CORE_ENUM_NXORDERTRANSACTIONFLAGSBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How one transaction on an order (a submit, an amend, a pull) is to be carried out.
class NX_CORE_API nxOrderTransactionFlagsBitMask final
    : public nxTypedBitMask<nxOrderTransactionFlagsBitMask, nxBitMask>
{
    NX_BIT_MASK(nxOrderTransactionFlagsBitMask);
};

#endif
