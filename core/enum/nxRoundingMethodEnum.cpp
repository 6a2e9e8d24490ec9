#include "core/enum/nxRoundingMethodEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxRoundingMethodEnum::_registered = _RegisterValues();

bool nxRoundingMethodEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxRoundingMethodEnum::GetClassName() const { return "nxRoundingMethodEnum"; }
