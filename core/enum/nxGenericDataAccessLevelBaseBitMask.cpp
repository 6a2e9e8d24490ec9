#include "core/enum/nxGenericDataAccessLevelBaseBitMask.h"

NX_BIT_MASK_SOURCE(nxGenericDataAccessLevelBaseBitMask)
