#ifndef CORE_ENUM_NXORDERBOOKINTERESTBITMASK_H
#define CORE_ENUM_NXORDERBOOKINTERESTBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Which events of an order book somebody subscribes to. "Early" events come before the exchange confirms them.
class NX_CORE_API nxOrderBookInterestBitMask final : public nxTypedBitMask<nxOrderBookInterestBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxOrderBookInterestBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderBookInterestBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
