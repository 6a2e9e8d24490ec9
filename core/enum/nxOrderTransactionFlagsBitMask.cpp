#include "core/enum/nxOrderTransactionFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderTransactionFlagsBitMask)
