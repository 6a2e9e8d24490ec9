#include "core/enum/nxLogLevelEnum.h"

std::string nxLogLevelEnum::GetClassName() const { return "nxLogLevelEnum"; }
