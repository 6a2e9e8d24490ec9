#include "core/enum/nxAttributeTreeDrilldownBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeTreeDrilldownBitMask)
