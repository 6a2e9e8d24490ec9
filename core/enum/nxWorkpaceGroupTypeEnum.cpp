#include "core/enum/nxWorkpaceGroupTypeEnum.h"

std::string nxWorkpaceGroupTypeEnum::GetClassName() const { return "nxWorkpaceGroupTypeEnum"; }
