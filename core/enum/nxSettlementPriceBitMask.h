#ifndef CORE_ENUM_NXSETTLEMENTPRICEBITMASK_H
#define CORE_ENUM_NXSETTLEMENTPRICEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// What kind of settlement price is published.
class NX_CORE_API nxSettlementPriceBitMask final : public nxTypedBitMask<nxSettlementPriceBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxSettlementPriceBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxSettlementPriceBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
