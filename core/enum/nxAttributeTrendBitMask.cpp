// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxAttributeTrendBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeTrendBitMask)
