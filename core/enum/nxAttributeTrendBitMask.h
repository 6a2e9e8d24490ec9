#ifndef CORE_ENUM_NXATTRIBUTETRENDBITMASK_H
#define CORE_ENUM_NXATTRIBUTETRENDBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Which way a displayed price moved last.
class NX_CORE_API nxAttributeTrendBitMask final : public nxTypedBitMask<nxAttributeTrendBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxAttributeTrendBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeTrendBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
