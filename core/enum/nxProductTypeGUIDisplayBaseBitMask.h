#ifndef CORE_ENUM_NXPRODUCTTYPEGUIDISPLAYBASEBITMASK_H
#define CORE_ENUM_NXPRODUCTTYPEGUIDISPLAYBASEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The types of product that a screen shows.
class NX_CORE_API nxProductTypeGUIDisplayBaseBitMask final
    : public nxTypedBitMask<nxProductTypeGUIDisplayBaseBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxProductTypeGUIDisplayBaseBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductTypeGUIDisplayBaseBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
