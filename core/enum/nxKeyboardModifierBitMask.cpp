// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxKeyboardModifierBitMask.h"

NX_BIT_MASK_SOURCE(nxKeyboardModifierBitMask)
