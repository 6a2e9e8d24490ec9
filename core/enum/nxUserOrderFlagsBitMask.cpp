// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxUserOrderFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxUserOrderFlagsBitMask)
