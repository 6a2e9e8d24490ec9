// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxSecurityNodeAccessBaseBitMask.h"

NX_BIT_MASK_SOURCE(nxSecurityNodeAccessBaseBitMask)
