#ifndef CORE_ENUM_NXPRODUCTSTATEBITMASK_H
#define CORE_ENUM_NXPRODUCTSTATEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The states of trading in a product; several may hold at once.
class NX_CORE_API nxProductStateBitMask final : public nxTypedBitMask<nxProductStateBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxProductStateBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductStateBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
