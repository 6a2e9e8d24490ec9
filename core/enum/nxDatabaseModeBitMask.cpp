// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxDatabaseModeBitMask.h"

NX_BIT_MASK_SOURCE(nxDatabaseModeBitMask)
