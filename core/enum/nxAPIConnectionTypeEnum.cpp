#include "core/enum/nxAPIConnectionTypeEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxAPIConnectionTypeEnum::_registered = _RegisterValues();

bool nxAPIConnectionTypeEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxAPIConnectionTypeEnum::GetClassName() const { return "nxAPIConnectionTypeEnum"; }
