// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxGenericEnum.h"

const bool nxGenericEnum::_registered = _RegisterValues();

bool nxGenericEnum::_RegisterValues()
{
    return true;  // no value belongs to this class alone
}

std::string nxGenericEnum::GetClassName() const { return "nxGenericEnum"; }
