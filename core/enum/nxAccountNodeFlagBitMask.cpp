#include "core/enum/nxAccountNodeFlagBitMask.h"

NX_BIT_MASK_SOURCE(nxAccountNodeFlagBitMask)
