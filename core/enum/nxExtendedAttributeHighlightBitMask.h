#ifndef CORE_ENUM_NXEXTENDEDATTRIBUTEHIGHLIGHTBITMASK_H
#define CORE_ENUM_NXEXTENDEDATTRIBUTEHIGHLIGHTBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Further reasons why a displayed attribute is highlighted; see nxAttributeHighlightBitMask.
class NX_CORE_API nxExtendedAttributeHighlightBitMask final
    : public nxTypedBitMask<nxExtendedAttributeHighlightBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxExtendedAttributeHighlightBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxExtendedAttributeHighlightBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
