// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxAccountNodeDefinitionFieldsBitMask.h"

NX_BIT_MASK_SOURCE(nxAccountNodeDefinitionFieldsBitMask)
