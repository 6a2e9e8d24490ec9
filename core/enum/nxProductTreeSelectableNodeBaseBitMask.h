#ifndef CORE_ENUM_NXPRODUCTTREESELECTABLENODEBASEBITMASK_H
#define CORE_ENUM_NXPRODUCTTREESELECTABLENODEBASEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The levels of the product tree at which a user may select a node.
class NX_CORE_API nxProductTreeSelectableNodeBaseBitMask final
    : public nxTypedBitMask<nxProductTreeSelectableNodeBaseBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxProductTreeSelectableNodeBaseBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductTreeSelectableNodeBaseBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
