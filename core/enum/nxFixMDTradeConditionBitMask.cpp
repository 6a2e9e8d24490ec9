// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxFixMDTradeConditionBitMask.h"

NX_BIT_MASK_SOURCE(nxFixMDTradeConditionBitMask)
