#include "core/enum/nxExchangePriceFilterBitMask.h"

NX_BIT_MASK_SOURCE(nxExchangePriceFilterBitMask)
