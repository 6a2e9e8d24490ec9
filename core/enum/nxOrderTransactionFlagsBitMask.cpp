// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxOrderTransactionFlagsBitMask.h"

NX_BIT_MASK_SOURCE(nxOrderTransactionFlagsBitMask)
