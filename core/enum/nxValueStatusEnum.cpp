#include "core/enum/nxValueStatusEnum.h"

std::string nxValueStatusEnum::GetClassName() const { return "nxValueStatusEnum"; }
