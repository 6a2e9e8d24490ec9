// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxAttributeHighlightBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeHighlightBitMask)
