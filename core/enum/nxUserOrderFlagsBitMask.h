#ifndef CORE_ENUM_NXUSERORDERFLAGSBITMASK_H
#define CORE_ENUM_NXUSERORDERFLAGSBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// Thirty flags on an order whose meaning its users decide.
///
/// The two top bits are registered as well; the null bit carries the identifier of flag 29 once more, which is kept
/// because stored settings know it and which is never printed.
class NX_CORE_API nxUserOrderFlagsBitMask final : public nxTypedBitMask<nxUserOrderFlagsBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxUserOrderFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxUserOrderFlagsBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
