// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxServerCapabilityBitMask.h"

NX_BIT_MASK_SOURCE(nxServerCapabilityBitMask)
