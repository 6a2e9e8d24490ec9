// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXKEYBOARDMODIFIERBITMASK_H
#define CORE_ENUM_NXKEYBOARDMODIFIERBITMASK_H

#include "core/enum/inline/nxListedBitMask.h"

/// The modifier keys that are held down while another key or a mouse button is pressed.
class NX_CORE_API nxKeyboardModifierBitMask final : public nxTypedBitMask<nxKeyboardModifierBitMask, nxBitMask>
{
    NX_BIT_MASK(nxKeyboardModifierBitMask);
};

#endif
