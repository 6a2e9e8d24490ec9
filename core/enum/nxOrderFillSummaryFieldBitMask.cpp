// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxOrderFillSummaryFieldBitMask.h"

#include "core/enum/internal/nxListedBitMaskSource.h"

NX_LIBRARY_BIT_MASK_SOURCE(nxOrderFillSummaryFieldBitMask)
