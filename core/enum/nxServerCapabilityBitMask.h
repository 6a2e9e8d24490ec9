// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXSERVERCAPABILITYBITMASK_H
#define CORE_ENUM_NXSERVERCAPABILITYBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The services that a server offers its clients.
class NX_CORE_API nxServerCapabilityBitMask final : public nxTypedBitMask<nxServerCapabilityBitMask, nxBitMask64>
{
    NX_BIT_MASK(nxServerCapabilityBitMask);
};

#endif
