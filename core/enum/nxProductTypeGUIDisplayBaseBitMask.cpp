#include "core/enum/nxProductTypeGUIDisplayBaseBitMask.h"

NX_BIT_MASK_SOURCE(nxProductTypeGUIDisplayBaseBitMask)
