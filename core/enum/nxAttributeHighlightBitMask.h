#ifndef CORE_ENUM_NXATTRIBUTEHIGHLIGHTBITMASK_H
#define CORE_ENUM_NXATTRIBUTEHIGHLIGHTBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Why a displayed attribute is highlighted.
class NX_CORE_API nxAttributeHighlightBitMask final : public nxTypedBitMask<nxAttributeHighlightBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxAttributeHighlightBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeHighlightBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
