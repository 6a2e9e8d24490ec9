// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxGenericDataAccessLevelBaseBitMask.h"

NX_BIT_MASK_SOURCE(nxGenericDataAccessLevelBaseBitMask)
