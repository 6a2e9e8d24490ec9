#include "core/enum/nxProductFlagBitMask.h"

NX_BIT_MASK_SOURCE(nxProductFlagBitMask)
