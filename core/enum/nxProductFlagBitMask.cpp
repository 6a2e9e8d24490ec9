// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxProductFlagBitMask.h"

NX_BIT_MASK_SOURCE(nxProductFlagBitMask)
