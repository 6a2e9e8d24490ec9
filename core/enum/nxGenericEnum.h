// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXGENERICENUM_H
#define CORE_ENUM_NXGENERICENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of a value that belongs to no class in particular.
class NX_CORE_API nxGenericEnum final : public nxTypedEnum<nxGenericEnum, 0, 999999>
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
