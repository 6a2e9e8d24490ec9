// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxOrderTransactionBroadcastBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderTransactionBroadcastBitMask)
