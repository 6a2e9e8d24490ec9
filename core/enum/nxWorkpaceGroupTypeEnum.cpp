#include "core/enum/nxWorkpaceGroupTypeEnum.h"

#include "core/enum/nxEnumRows.h"

const bool nxWorkpaceGroupTypeEnum::_registered = _RegisterValues();

bool nxWorkpaceGroupTypeEnum::_RegisterValues()
{
    const nxEnumRows rows = nxEnumRows::GetRange(MinimumValue + 1, MaximumValue - 1);
    return _RegisterAll(rows.first, rows.last);
}

std::string nxWorkpaceGroupTypeEnum::GetClassName() const { return "nxWorkpaceGroupTypeEnum"; }
