#include "core/enum/nxCaseSensitivityEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxCaseSensitivityEnum::_registered = _RegisterValues();

bool nxCaseSensitivityEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxCaseSensitivityEnum::GetClassName() const { return "nxCaseSensitivityEnum"; }
