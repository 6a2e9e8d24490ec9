// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxDataObjectCacheObserverBitMask.h"

NX_BIT_MASK_SOURCE(nxDataObjectCacheObserverBitMask)
