#include "core/enum/nxOrderFillSummaryFieldBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderFillSummaryFieldBitMask)
