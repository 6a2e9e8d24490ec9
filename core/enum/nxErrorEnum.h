// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXERRORENUM_H
#define CORE_ENUM_NXERRORENUM_H

#include <string>

#include "core/enum/nxTypedEnum.h"

// Declared first, because g++ does not take both this mark and NX_CORE_API in one declaration.
class [[nodiscard]] nxErrorEnum;

/// The result of nearly every operation that can fail. Success is the default value, tested with IsOK().
///
/// A call whose error is dropped brings a warning. Where no error can matter, say so: `static_cast<void>(lock.Unlock());`.
///
/// Codes run from 1000001 to 1999998 and are named NX_ERR_...; the short description of a code is that name, the long
/// description is for people. Values of other enumerations cannot be stored: they become 0, which reads as
/// success. Read a number of unknown origin with FromForeignValue().
/// @code
/// if (const nxErrorEnum error = price.SetFromString(text, '.'); !error.IsOK())
///     std::cerr << error.GetLongDescription() << '\n';
/// @endcode
class NX_CORE_API nxErrorEnum final : public nxTypedEnum<nxErrorEnum, 1000000, 1999999>
{
public:
    using nxTypedEnum::nxTypedEnum;
    using nxTypedEnum::operator=;

    /// @return whether the operation succeeded: the value is exactly 0. "No change" (2) is not OK.
    bool IsOK() const { return GetValue() == NX_ENUM_UNDEFINED; }

    /// An error of a number that another program, a file or a counterparty supplies.
    /// @return success for 0, the code itself for a number from 1000001 to 1999998, registered or not, and
    ///         NX_ERR_UNSPECIFIED for every other number. No such number reads as a success.
    static nxErrorEnum FromForeignValue(unsigned long long value) noexcept
    {
        if (value == NX_ENUM_UNDEFINED)
            return nxErrorEnum();
        return MinimumValue < value && value < MaximumValue ? nxErrorEnum(value) : nxErrorEnum(NX_ERR_UNSPECIFIED);
    }

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
