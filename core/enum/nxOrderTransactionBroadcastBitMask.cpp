#include "core/enum/nxOrderTransactionBroadcastBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderTransactionBroadcastBitMask)
