#ifndef CORE_ENUM_NXACCOUNTNODEFLAGBITMASK_H
#define CORE_ENUM_NXACCOUNTNODEFLAGBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How positions are kept for an account.
class NX_CORE_API nxAccountNodeFlagBitMask final : public nxTypedBitMask<nxAccountNodeFlagBitMask, nxBitMask64>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxAccountNodeFlagBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAccountNodeFlagBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
