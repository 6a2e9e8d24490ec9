#ifndef CORE_ENUM_NXACCOUNTNODEDEFINITIONFIELDSBITMASK_H
#define CORE_ENUM_NXACCOUNTNODEDEFINITIONFIELDSBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The fields of an account's definition that a request carries.
class NX_CORE_API nxAccountNodeDefinitionFieldsBitMask final
    : public nxTypedBitMask<nxAccountNodeDefinitionFieldsBitMask, nxBitMask64>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxAccountNodeDefinitionFieldsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAccountNodeDefinitionFieldsBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
