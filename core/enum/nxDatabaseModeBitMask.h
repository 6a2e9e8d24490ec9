// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXDATABASEMODEBITMASK_H
#define CORE_ENUM_NXDATABASEMODEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// How a database is opened.
class NX_CORE_API nxDatabaseModeBitMask final : public nxTypedBitMask<nxDatabaseModeBitMask, nxBitMask>
{
    NX_BIT_MASK(nxDatabaseModeBitMask);
};

#endif
