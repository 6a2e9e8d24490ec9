#include "core/enum/nxFixMDTradeConditionBitMask.h"

NX_BIT_MASK_SOURCE(nxFixMDTradeConditionBitMask)
