// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXPRODUCTTYPEGUIDISPLAYBASEBITMASK_H
#define CORE_ENUM_NXPRODUCTTYPEGUIDISPLAYBASEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The types of product that a screen shows.
class NX_CORE_API nxProductTypeGUIDisplayBaseBitMask final
    : public nxTypedBitMask<nxProductTypeGUIDisplayBaseBitMask, nxBitMask>
{
    NX_BIT_MASK(nxProductTypeGUIDisplayBaseBitMask);
};

#endif
