// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxFixMDQuoteConditionBitMask.h"

NX_BIT_MASK_SOURCE(nxFixMDQuoteConditionBitMask)
