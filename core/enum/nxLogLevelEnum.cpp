// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxLogLevelEnum.h"

const bool nxLogLevelEnum::_registered = _RegisterValues();

bool nxLogLevelEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxLogLevelEnum::GetClassName() const { return "nxLogLevelEnum"; }
