// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxHIDEventTargetFilterBitMask.h"

NX_BIT_MASK_SOURCE(nxHIDEventTargetFilterBitMask)
