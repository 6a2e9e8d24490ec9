// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxDataInterestBitMask.h"

NX_BIT_MASK_SOURCE(nxDataInterestBitMask)
