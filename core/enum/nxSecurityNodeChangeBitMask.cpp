// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxSecurityNodeChangeBitMask.h"

NX_BIT_MASK_SOURCE(nxSecurityNodeChangeBitMask)
