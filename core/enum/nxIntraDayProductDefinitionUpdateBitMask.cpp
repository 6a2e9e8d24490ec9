// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxIntraDayProductDefinitionUpdateBitMask.h"

NX_BIT_MASK_SOURCE(nxIntraDayProductDefinitionUpdateBitMask)
