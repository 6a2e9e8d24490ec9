// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxProductTypeGUIDisplayBaseBitMask.h"

NX_BIT_MASK_SOURCE(nxProductTypeGUIDisplayBaseBitMask)
