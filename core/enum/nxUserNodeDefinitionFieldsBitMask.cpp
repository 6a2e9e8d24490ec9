// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxUserNodeDefinitionFieldsBitMask.h"

NX_BIT_MASK_SOURCE(nxUserNodeDefinitionFieldsBitMask)
