#ifndef CORE_ENUM_NXDATAINTERESTBITMASK_H
#define CORE_ENUM_NXDATAINTERESTBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Which bars of a product's history somebody subscribes to: by time, by number of trades, by volume.
class NX_CORE_API nxDataInterestBitMask final : public nxTypedBitMask<nxDataInterestBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxDataInterestBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxDataInterestBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
