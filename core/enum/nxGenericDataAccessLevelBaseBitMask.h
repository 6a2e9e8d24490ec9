// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXGENERICDATAACCESSLEVELBASEBITMASK_H
#define CORE_ENUM_NXGENERICDATAACCESSLEVELBASEBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The rights of a user to a data object.
///
/// These are levels, not single bits: compare the value (`mask == READ_WRITE_ACCESS`) rather than test bits. Printing
/// goes by bits, as for every mask.
class NX_CORE_API nxGenericDataAccessLevelBaseBitMask final
    : public nxTypedBitMask<nxGenericDataAccessLevelBaseBitMask, nxBitMask>
{
    NX_BIT_MASK(nxGenericDataAccessLevelBaseBitMask);
};

#endif
