#include "core/enum/nxLogLevelEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxLogLevelEnum::_registered = _RegisterValues();

bool nxLogLevelEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxLogLevelEnum::GetClassName() const { return "nxLogLevelEnum"; }
