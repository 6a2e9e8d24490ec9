// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxAttributeChangeBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeChangeBitMask)
