#include "core/enum/nxSettlementPriceBitMask.h"

NX_BIT_MASK_SOURCE(nxSettlementPriceBitMask)
