#ifndef CORE_ENUM_NXSERVERCAPABILITYBITMASK_H
#define CORE_ENUM_NXSERVERCAPABILITYBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// What a server can do for its clients.
class NX_CORE_API nxServerCapabilityBitMask final : public nxTypedBitMask<nxServerCapabilityBitMask, nxBitMask64>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxServerCapabilityBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxServerCapabilityBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
