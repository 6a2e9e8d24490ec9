#include "core/enum/nxDatabaseModeBitMask.h"

NX_BIT_MASK_SOURCE(nxDatabaseModeBitMask)
