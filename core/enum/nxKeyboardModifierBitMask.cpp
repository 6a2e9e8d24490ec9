#include "core/enum/nxKeyboardModifierBitMask.h"

NX_BIT_MASK_SOURCE(nxKeyboardModifierBitMask)
