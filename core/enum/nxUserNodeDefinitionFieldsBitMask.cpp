#include "core/enum/nxUserNodeDefinitionFieldsBitMask.h"

NX_BIT_MASK_SOURCE(nxUserNodeDefinitionFieldsBitMask)
