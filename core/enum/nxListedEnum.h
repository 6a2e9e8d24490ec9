// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_NXLISTEDENUM_H
#define CORE_ENUM_NXLISTEDENUM_H

/// @file
/// An enumeration of an application's own, made of one list that names each value once.

#include <string>

#include "core/enum/nxTypedEnum.h"

/// The body of an enumeration class whose values are the list NX_VALUES_<class>: its constants, its constructors and
/// assignments, and its name. A row has the constant, the value, the identifier and the wording. The class derives from
/// nxTypedEnum with two exclusive bounds and needs nothing else. One source has NX_ENUM_SOURCE; without it the program does
/// not link.
/// @code
/// #define NX_VALUES_mySideEnum(VALUE) VALUE(BUY, 3000001, "MY_SIDE_BUY", "Buy") VALUE(SELL, 3000002, "MY_SIDE_SELL", "Sell")
///
/// class mySideEnum final : public nxTypedEnum<mySideEnum, 3000000, 3000003>
/// {
///     NX_ENUM(mySideEnum);
/// };
/// @endcode
#define NX_ENUM(CLASS)                                                  \
public:                                                                 \
    NX_VALUES_##CLASS(NX_ENUM_CONSTANT) using nxTypedEnum::nxTypedEnum; \
    using nxTypedEnum::operator=;                                       \
    std::string GetClassName() const override;                          \
                                                                        \
private:                                                                \
    static bool _RegisterValues();                                      \
    static const bool _registered

/// The source of such a class: registers the texts of its values while the program or plug-in is loaded.
#define NX_ENUM_SOURCE(CLASS)                                                      \
    const bool CLASS::_registered = _RegisterValues();                             \
    bool CLASS::_RegisterValues()                                                  \
    {                                                                              \
        static constexpr ValueTexts values[] = {NX_VALUES_##CLASS(NX_ENUM_TEXTS)}; \
        return _RegisterAll(values);                                               \
    }                                                                              \
    std::string CLASS::GetClassName() const { return #CLASS; }

/// Makes the constant of a row, for NX_ENUM.
#define NX_ENUM_CONSTANT(constant, value, shortDescription, longDescription) \
    static constexpr nxEnumValue constant{value};
/// Makes the texts of a row, for NX_ENUM_SOURCE.
#define NX_ENUM_TEXTS(constant, value, shortDescription, longDescription) {constant, shortDescription, longDescription},

#endif
