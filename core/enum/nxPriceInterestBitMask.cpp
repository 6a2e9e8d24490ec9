// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxPriceInterestBitMask.h"

NX_BIT_MASK_SOURCE(nxPriceInterestBitMask)
