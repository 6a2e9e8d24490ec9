#include "core/enum/nxBoolEnum.h"

std::string nxBoolEnum::GetClassName() const { return "nxBoolEnum"; }
