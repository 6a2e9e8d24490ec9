#include "core/enum/nxExtendedAttributeHighlightBitMask.h"

NX_BIT_MASK_SOURCE(nxExtendedAttributeHighlightBitMask)
