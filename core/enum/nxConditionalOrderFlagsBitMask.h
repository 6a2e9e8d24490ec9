#ifndef CORE_ENUM_NXCONDITIONALORDERFLAGSBITMASK_H
#define CORE_ENUM_NXCONDITIONALORDERFLAGSBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How the entry of a stop bracket is executed.
class NX_CORE_API nxConditionalOrderFlagsBitMask final
    : public nxTypedBitMask<nxConditionalOrderFlagsBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxConditionalOrderFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxConditionalOrderFlagsBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
