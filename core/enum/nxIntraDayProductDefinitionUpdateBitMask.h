#ifndef CORE_ENUM_NXINTRADAYPRODUCTDEFINITIONUPDATEBITMASK_H
#define CORE_ENUM_NXINTRADAYPRODUCTDEFINITIONUPDATEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// What has changed in a product's definition during the day.
class NX_CORE_API nxIntraDayProductDefinitionUpdateBitMask final
    : public nxTypedBitMask<nxIntraDayProductDefinitionUpdateBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxIntraDayProductDefinitionUpdateBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxIntraDayProductDefinitionUpdateBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
