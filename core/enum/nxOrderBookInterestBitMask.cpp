// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxOrderBookInterestBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderBookInterestBitMask)
