#include "core/enum/nxErrorEnum.h"

std::string nxErrorEnum::GetClassName() const { return "nxErrorEnum"; }
