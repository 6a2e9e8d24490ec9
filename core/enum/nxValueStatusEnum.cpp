#include "core/enum/nxValueStatusEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxValueStatusEnum::_registered = _RegisterValues();

bool nxValueStatusEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxValueStatusEnum::GetClassName() const { return "nxValueStatusEnum"; }
