// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxWorkpaceGroupTypeEnum.h"

const bool nxWorkpaceGroupTypeEnum::_registered = _RegisterValues();

bool nxWorkpaceGroupTypeEnum::_RegisterValues() { return _RegisterListed(MinimumValue + 1, MaximumValue - 1); }

std::string nxWorkpaceGroupTypeEnum::GetClassName() const { return "nxWorkpaceGroupTypeEnum"; }
