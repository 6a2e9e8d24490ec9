// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXORDERTRANSACTIONBROADCASTBITMASK_H
#define CORE_ENUM_NXORDERTRANSACTIONBROADCASTBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How a transaction on an order is broadcast to other servers.
class NX_CORE_API nxOrderTransactionBroadcastBitMask final
    : public nxTypedBitMask<nxOrderTransactionBroadcastBitMask, nxBitMask>
{
    NX_BIT_MASK(nxOrderTransactionBroadcastBitMask);
};

#endif
