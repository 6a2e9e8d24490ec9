// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxAttributeTreeDrilldownBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeTreeDrilldownBitMask)
