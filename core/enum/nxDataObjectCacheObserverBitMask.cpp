#include "core/enum/nxDataObjectCacheObserverBitMask.h"

NX_BIT_MASK_SOURCE(nxDataObjectCacheObserverBitMask)
