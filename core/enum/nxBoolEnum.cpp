// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxBoolEnum.h"

const bool nxBoolEnum::_registered = _RegisterValues();

bool nxBoolEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxBoolEnum::GetClassName() const { return "nxBoolEnum"; }
