#ifndef CORE_ENUM_NXPRODUCTFLAGBITMASK_H
#define CORE_ENUM_NXPRODUCTFLAGBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The properties of a product. TAS is trading at settlement.
class NX_CORE_API nxProductFlagBitMask final : public nxTypedBitMask<nxProductFlagBitMask, nxBitMask64>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxProductFlagBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductFlagBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
