// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxSettlementPriceBitMask.h"

NX_BIT_MASK_SOURCE(nxSettlementPriceBitMask)
