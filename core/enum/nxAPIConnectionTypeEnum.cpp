#include "core/enum/nxAPIConnectionTypeEnum.h"

std::string nxAPIConnectionTypeEnum::GetClassName() const { return "nxAPIConnectionTypeEnum"; }
