// SPDX-License-Identifier: Apache-2.0
#ifndef CORE_ENUM_INLINE_NXLISTEDBITMASK_H
#define CORE_ENUM_INLINE_NXLISTEDBITMASK_H

#include "core/enum/inline/nxBitMaskFlags.h"
#include "core/enum/nxTypedBitMask.h"

/// The body of a bit mask class whose flags are the list NX_FLAGS_<class>: its constants as the enumeration `Flag`, its
/// constructors and assignments, and its name. The class derives from nxTypedBitMask and needs nothing else.
/// @code
/// #define NX_FLAGS_myQuoteFlagsBitMask(FLAG) FLAG(FIRM, Bit(0), "FIRM", "Firm") FLAG(LATE, Bit(1), "LATE", "Late")
///
/// class myQuoteFlagsBitMask final : public nxTypedBitMask<myQuoteFlagsBitMask, nxBitMask>
/// {
///     NX_BIT_MASK(myQuoteFlagsBitMask);
/// };
/// @endcode
#define NX_BIT_MASK(CLASS)                     \
public:                                        \
    enum Flag : Word                           \
    {                                          \
        NX_FLAGS_##CLASS(NX_FLAG_CONSTANT)     \
    };                                         \
    using nxTypedBitMask::nxTypedBitMask;      \
    using nxTypedBitMask::operator=;           \
    std::string GetClassName() const override; \
                                               \
private:                                       \
    static bool _RegisterValues();             \
    static const bool _registered

/// The source of such a class: registers the texts of its flags while the program or plug-in is loaded.
#define NX_BIT_MASK_SOURCE(CLASS)                                               \
    const bool CLASS::_registered = _RegisterValues();                          \
    bool CLASS::_RegisterValues()                                               \
    {                                                                           \
        static constexpr FlagTexts flags[] = {NX_FLAGS_##CLASS(NX_FLAG_TEXTS)}; \
        return _RegisterFlags(#CLASS, flags);                                   \
    }                                                                           \
    std::string CLASS::GetClassName() const { return #CLASS; }

/// Makes the constant of a row, for NX_BIT_MASK.
#define NX_FLAG_CONSTANT(constant, word, shortDescription, longDescription) constant = word,
/// Makes the texts of a row, for NX_BIT_MASK_SOURCE.
#define NX_FLAG_TEXTS(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},

#endif
