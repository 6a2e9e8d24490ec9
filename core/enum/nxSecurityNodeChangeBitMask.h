#ifndef CORE_ENUM_NXSECURITYNODECHANGEBITMASK_H
#define CORE_ENUM_NXSECURITYNODECHANGEBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// What has changed in a node of the tree of users and accounts.
class NX_CORE_API nxSecurityNodeChangeBitMask final : public nxTypedBitMask<nxSecurityNodeChangeBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxSecurityNodeChangeBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxSecurityNodeChangeBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
