#include "core/enum/nxFixMDQuoteConditionBitMask.h"

NX_BIT_MASK_SOURCE(nxFixMDQuoteConditionBitMask)
