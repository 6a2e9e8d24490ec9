#ifndef CORE_ENUM_NXEXCHANGEPRICEFILTERBITMASK_H
#define CORE_ENUM_NXEXCHANGEPRICEFILTERBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Which of an exchange's price messages are passed on.
class NX_CORE_API nxExchangePriceFilterBitMask final : public nxTypedBitMask<nxExchangePriceFilterBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxExchangePriceFilterBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxExchangePriceFilterBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
