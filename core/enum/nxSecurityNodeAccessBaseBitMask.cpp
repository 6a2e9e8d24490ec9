#include "core/enum/nxSecurityNodeAccessBaseBitMask.h"

NX_BIT_MASK_SOURCE(nxSecurityNodeAccessBaseBitMask)
