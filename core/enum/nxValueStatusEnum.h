// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXVALUESTATUSENUM_H
#define CORE_ENUM_NXVALUESTATUSENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of whether a nullable value holds a number, nothing, or the instruction to keep the receiver's
/// value.
class NX_CORE_API nxValueStatusEnum final : public nxTypedEnum<nxValueStatusEnum, 240, 244>
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
