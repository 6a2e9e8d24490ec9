#include "core/enum/nxAttributeTrendBitMask.h"

NX_BIT_MASK_SOURCE(nxAttributeTrendBitMask)
