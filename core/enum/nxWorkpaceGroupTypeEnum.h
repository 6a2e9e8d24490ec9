// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXWORKPACEGROUPTYPEENUM_H
#define CORE_ENUM_NXWORKPACEGROUPTYPEENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of the users that see a group of work spaces (the spelling of the name is kept).
class NX_CORE_API nxWorkpaceGroupTypeEnum final : public nxTypedEnum<nxWorkpaceGroupTypeEnum, 18000, 18004>
{
public:
    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
