// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxOrderFillSummaryFieldBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderFillSummaryFieldBitMask)
