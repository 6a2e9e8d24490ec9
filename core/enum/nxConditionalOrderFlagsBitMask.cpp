// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxConditionalOrderFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxConditionalOrderFlagsBitMask)
