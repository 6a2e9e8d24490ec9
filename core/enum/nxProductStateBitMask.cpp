#include "core/enum/nxProductStateBitMask.h"

NX_BIT_MASK_SOURCE(nxProductStateBitMask)
