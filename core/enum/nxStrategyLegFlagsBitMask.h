#ifndef CORE_ENUM_NXSTRATEGYLEGFLAGSBITMASK_H
#define CORE_ENUM_NXSTRATEGYLEGFLAGSBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How the price of a strategy's leg follows its secondary product.
class NX_CORE_API nxStrategyLegFlagsBitMask final : public nxTypedBitMask<nxStrategyLegFlagsBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxStrategyLegFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxStrategyLegFlagsBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
