#include "core/enum/nxServerCapabilityBitMask.h"

NX_BIT_MASK_SOURCE(nxServerCapabilityBitMask)
