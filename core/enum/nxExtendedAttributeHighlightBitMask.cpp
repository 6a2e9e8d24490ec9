// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxExtendedAttributeHighlightBitMask.h"

NX_BIT_MASK_SOURCE(nxExtendedAttributeHighlightBitMask)
