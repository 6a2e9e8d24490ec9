// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXAPICONNECTIONTYPEENUM_H
#define CORE_ENUM_NXAPICONNECTIONTYPEENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of how an application is connected to its servers.
class NX_CORE_API nxAPIConnectionTypeEnum final : public nxTypedEnum<nxAPIConnectionTypeEnum, 19000, 19004>
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
