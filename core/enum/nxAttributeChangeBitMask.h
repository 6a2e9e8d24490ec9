#ifndef CORE_ENUM_NXATTRIBUTECHANGEBITMASK_H
#define CORE_ENUM_NXATTRIBUTECHANGEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// What has changed in a displayed attribute, and how the change is shown.
class NX_CORE_API nxAttributeChangeBitMask final : public nxTypedBitMask<nxAttributeChangeBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxAttributeChangeBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeChangeBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
