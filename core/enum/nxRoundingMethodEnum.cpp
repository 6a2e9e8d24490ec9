// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxRoundingMethodEnum.h"

const bool nxRoundingMethodEnum::_registered = _RegisterValues();

bool nxRoundingMethodEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxRoundingMethodEnum::GetClassName() const { return "nxRoundingMethodEnum"; }
