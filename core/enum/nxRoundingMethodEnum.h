// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXROUNDINGMETHODENUM_H
#define CORE_ENUM_NXROUNDINGMETHODENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of how a number between two multiples of an increment is rounded to one of them.
class NX_CORE_API nxRoundingMethodEnum final : public nxTypedEnum<nxRoundingMethodEnum, 7400, 7405>
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
