// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxProductStateBitMask.h"

NX_BIT_MASK_SOURCE(nxProductStateBitMask)
