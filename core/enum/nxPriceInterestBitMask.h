#ifndef CORE_ENUM_NXPRICEINTERESTBITMASK_H
#define CORE_ENUM_NXPRICEINTERESTBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Which prices of a product somebody subscribes to.
class NX_CORE_API nxPriceInterestBitMask final : public nxTypedBitMask<nxPriceInterestBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxPriceInterestBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxPriceInterestBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
