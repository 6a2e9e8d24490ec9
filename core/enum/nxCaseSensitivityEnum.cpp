#include "core/enum/nxCaseSensitivityEnum.h"

std::string nxCaseSensitivityEnum::GetClassName() const { return "nxCaseSensitivityEnum"; }
