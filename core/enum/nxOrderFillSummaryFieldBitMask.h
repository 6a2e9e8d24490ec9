#ifndef CORE_ENUM_NXORDERFILLSUMMARYFIELDBITMASK_H
#define CORE_ENUM_NXORDERFILLSUMMARYFIELDBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// The fields that a summary of an order's fills carries.
class NX_CORE_API nxOrderFillSummaryFieldBitMask final
    : public nxTypedBitMask<nxOrderFillSummaryFieldBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxOrderFillSummaryFieldBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderFillSummaryFieldBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
