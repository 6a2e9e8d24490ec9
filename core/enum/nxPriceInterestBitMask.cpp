#include "core/enum/nxPriceInterestBitMask.h"

NX_BIT_MASK_SOURCE(nxPriceInterestBitMask)
