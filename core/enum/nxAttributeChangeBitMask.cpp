#include "core/enum/nxAttributeChangeBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeChangeBitMask)
