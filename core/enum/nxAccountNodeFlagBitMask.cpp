// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxAccountNodeFlagBitMask.h"

NX_BIT_MASK_SOURCE(nxAccountNodeFlagBitMask)
