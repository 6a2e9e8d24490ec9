#include "core/enum/nxSecurityNodeChangeBitMask.h"

NX_BIT_MASK_SOURCE(nxSecurityNodeChangeBitMask)
