// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxValueStatusEnum.h"

const bool nxValueStatusEnum::_registered = _RegisterValues();

bool nxValueStatusEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxValueStatusEnum::GetClassName() const { return "nxValueStatusEnum"; }
