#ifndef CORE_ENUM_NXORDERTRANSACTIONFLAGSBITMASK_H
#define CORE_ENUM_NXORDERTRANSACTIONFLAGSBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How one transaction on an order (a submit, an amend, a pull) is to be carried out.
class NX_CORE_API nxOrderTransactionFlagsBitMask final
    : public nxTypedBitMask<nxOrderTransactionFlagsBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxOrderTransactionFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderTransactionFlagsBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
