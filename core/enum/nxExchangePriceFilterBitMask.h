// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXEXCHANGEPRICEFILTERBITMASK_H
#define CORE_ENUM_NXEXCHANGEPRICEFILTERBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The price messages of an exchange that are passed on.
class NX_CORE_API nxExchangePriceFilterBitMask final : public nxTypedBitMask<nxExchangePriceFilterBitMask, nxBitMask>
{
    NX_BIT_MASK(nxExchangePriceFilterBitMask);
};

#endif
