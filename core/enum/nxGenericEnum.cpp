#include "core/enum/nxGenericEnum.h"

std::string nxGenericEnum::GetClassName() const { return "nxGenericEnum"; }
