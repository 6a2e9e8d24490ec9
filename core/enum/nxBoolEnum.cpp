#include "core/enum/nxBoolEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxBoolEnum::_registered = _RegisterValues();

bool nxBoolEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxBoolEnum::GetClassName() const { return "nxBoolEnum"; }
