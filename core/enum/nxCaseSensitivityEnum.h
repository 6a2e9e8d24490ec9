// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXCASESENSITIVITYENUM_H
#define CORE_ENUM_NXCASESENSITIVITYENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of whether texts are compared with regard to case: CASE_INSENSITIVE or CASE_SENSITIVE.
class NX_CORE_API nxCaseSensitivityEnum final : public nxTypedEnum<nxCaseSensitivityEnum, 25, 28>
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
