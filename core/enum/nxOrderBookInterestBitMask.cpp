#include "core/enum/nxOrderBookInterestBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderBookInterestBitMask)
