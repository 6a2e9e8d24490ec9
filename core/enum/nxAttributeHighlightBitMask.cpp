#include "core/enum/nxAttributeHighlightBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeHighlightBitMask)
