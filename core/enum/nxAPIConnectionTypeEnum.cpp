// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxAPIConnectionTypeEnum.h"

const bool nxAPIConnectionTypeEnum::_registered = _RegisterValues();

bool nxAPIConnectionTypeEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxAPIConnectionTypeEnum::GetClassName() const { return "nxAPIConnectionTypeEnum"; }
