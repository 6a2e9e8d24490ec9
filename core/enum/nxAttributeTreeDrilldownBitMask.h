#ifndef CORE_ENUM_NXATTRIBUTETREEDRILLDOWNBITMASK_H
#define CORE_ENUM_NXATTRIBUTETREEDRILLDOWNBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How a row of a tree on a screen can be expanded.
class NX_CORE_API nxAttributeTreeDrilldownBitMask final
    : public nxTypedBitMask<nxAttributeTreeDrilldownBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxAttributeTreeDrilldownBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeTreeDrilldownBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
