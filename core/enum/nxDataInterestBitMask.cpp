#include "core/enum/nxDataInterestBitMask.h"

NX_BIT_MASK_SOURCE(nxDataInterestBitMask)
