#include "core/enum/nxRoundingMethodEnum.h"

std::string nxRoundingMethodEnum::GetClassName() const { return "nxRoundingMethodEnum"; }
