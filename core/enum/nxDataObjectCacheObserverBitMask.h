// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXDATAOBJECTCACHEOBSERVERBITMASK_H
#define CORE_ENUM_NXDATAOBJECTCACHEOBSERVERBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How an observer of the data object cache is notified.
class NX_CORE_API nxDataObjectCacheObserverBitMask final
    : public nxTypedBitMask<nxDataObjectCacheObserverBitMask, nxBitMask>
{
    NX_BIT_MASK(nxDataObjectCacheObserverBitMask);
};

#endif
