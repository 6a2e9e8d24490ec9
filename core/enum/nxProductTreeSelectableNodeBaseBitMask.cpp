// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxProductTreeSelectableNodeBaseBitMask.h"

NX_BIT_MASK_SOURCE(nxProductTreeSelectableNodeBaseBitMask)
