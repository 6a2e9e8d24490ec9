#ifndef CORE_ENUM_NXORDERTRANSACTIONBROADCASTBITMASK_H
#define CORE_ENUM_NXORDERTRANSACTIONBROADCASTBITMASK_H

#include "core/enum/nxTypedBitMask.h"

/// How a transaction on an order is broadcast to other servers.
class NX_CORE_API nxOrderTransactionBroadcastBitMask final
    : public nxTypedBitMask<nxOrderTransactionBroadcastBitMask, nxBitMask>
{
public:
    /// The flags; nxBitMaskFlags.inc lists them with their texts.
    enum Flag : Word
    {
#define NX_FLAGS_nxOrderTransactionBroadcastBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) constant = word,
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderTransactionBroadcastBitMask
    };

    using nxTypedBitMask::nxTypedBitMask;
    using nxTypedBitMask::operator=;

    std::string GetClassName() const override;

private:
    static bool _RegisterValues();
    static const bool _registered;
};

#endif
