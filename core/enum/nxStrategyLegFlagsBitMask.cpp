#include "core/enum/nxStrategyLegFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxStrategyLegFlagsBitMask)
