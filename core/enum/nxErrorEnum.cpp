// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxErrorEnum.h"

const bool nxErrorEnum::_registered = _RegisterValues();

bool nxErrorEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxErrorEnum::GetClassName() const { return "nxErrorEnum"; }
