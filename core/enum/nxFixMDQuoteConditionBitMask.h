#ifndef CORE_ENUM_NXFIXMDQUOTECONDITIONBITMASK_H
#define CORE_ENUM_NXFIXMDQUOTECONDITIONBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The conditions of a quote in market data; the code that stands for each in messages is part of its text.
class NX_CORE_API nxFixMDQuoteConditionBitMask final : public nxTypedBitMask<nxFixMDQuoteConditionBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxFixMDQuoteConditionBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxFixMDQuoteConditionBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
