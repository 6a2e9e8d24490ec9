// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXUSERNODEDEFINITIONFIELDSBITMASK_H
#define CORE_ENUM_NXUSERNODEDEFINITIONFIELDSBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The fields of a user's definition that a request carries.
class NX_CORE_API nxUserNodeDefinitionFieldsBitMask final
    : public nxTypedBitMask<nxUserNodeDefinitionFieldsBitMask, nxBitMask64>
{
    NX_BIT_MASK(nxUserNodeDefinitionFieldsBitMask);
};

#endif
