// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXLOGLEVELENUM_H
#define CORE_ENUM_NXLOGLEVELENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The enumeration of the severities of a log record, from NX_LOG_LEVEL_DEBUG (31) to NX_LOG_LEVEL_FATAL (38).
class NX_CORE_API nxLogLevelEnum final : public nxTypedEnum<nxLogLevelEnum, 30, 39>
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
