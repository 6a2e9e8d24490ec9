// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxStrategyLegFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxStrategyLegFlagsBitMask)
