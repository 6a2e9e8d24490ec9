// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXACCOUNTNODEDEFINITIONFIELDSBITMASK_H
#define CORE_ENUM_NXACCOUNTNODEDEFINITIONFIELDSBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The fields of an account's definition that a request carries.
class NX_CORE_API nxAccountNodeDefinitionFieldsBitMask final
    : public nxTypedBitMask<nxAccountNodeDefinitionFieldsBitMask, nxBitMask64>
{
    NX_BIT_MASK(nxAccountNodeDefinitionFieldsBitMask);
};

#endif
