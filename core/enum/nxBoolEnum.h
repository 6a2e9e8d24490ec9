// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXBOOLENUM_H
#define CORE_ENUM_NXBOOLENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of a named truth value: NX_BOOL_FALSE or NX_BOOL_TRUE.
class NX_CORE_API nxBoolEnum final : public nxTypedEnum<nxBoolEnum, 5000, 5003>
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
