#include "core/enum/nxAccountNodeDefinitionFieldsBitMask.h"

NX_BIT_MASK_SOURCE(nxAccountNodeDefinitionFieldsBitMask)
