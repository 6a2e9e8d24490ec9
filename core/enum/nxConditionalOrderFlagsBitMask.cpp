#include "core/enum/nxConditionalOrderFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxConditionalOrderFlagsBitMask)
