#include "core/enum/nxErrorEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxErrorEnum::_registered = _RegisterValues();

bool nxErrorEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxErrorEnum::GetClassName() const { return "nxErrorEnum"; }
