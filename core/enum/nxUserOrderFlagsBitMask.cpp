#include "core/enum/nxUserOrderFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxUserOrderFlagsBitMask)
