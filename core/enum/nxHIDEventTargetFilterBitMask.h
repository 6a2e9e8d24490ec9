// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXHIDEVENTTARGETFILTERBITMASK_H
#define CORE_ENUM_NXHIDEVENTTARGETFILTERBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The window that receives the events of an input device such as a trader's keypad.
class NX_CORE_API nxHIDEventTargetFilterBitMask final : public nxTypedBitMask<nxHIDEventTargetFilterBitMask, nxBitMask>
{
    NX_BIT_MASK(nxHIDEventTargetFilterBitMask);
};

#endif
