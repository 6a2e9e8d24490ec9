// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxCaseSensitivityEnum.h"

const bool nxCaseSensitivityEnum::_registered = _RegisterValues();

bool nxCaseSensitivityEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxCaseSensitivityEnum::GetClassName() const { return "nxCaseSensitivityEnum"; }
