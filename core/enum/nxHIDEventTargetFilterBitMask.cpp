// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxHIDEventTargetFilterBitMask.h"

#include "core/enum/internal/nxListedBitMaskSource.h"

NX_LIBRARY_BIT_MASK_SOURCE(nxHIDEventTargetFilterBitMask)
