#include "core/enum/nxHIDEventTargetFilterBitMask.h"

NX_BIT_MASK_SOURCE(nxHIDEventTargetFilterBitMask)
