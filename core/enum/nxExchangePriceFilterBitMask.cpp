// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxExchangePriceFilterBitMask.h"

NX_BIT_MASK_SOURCE(nxExchangePriceFilterBitMask)
