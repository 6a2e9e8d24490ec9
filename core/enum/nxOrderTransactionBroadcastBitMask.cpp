#include "core/enum/nxOrderTransactionBroadcastBitMask.h"

const bool nxOrderTransactionBroadcastBitMask::_registered = _RegisterValues();

bool nxOrderTransactionBroadcastBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxOrderTransactionBroadcastBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderTransactionBroadcastBitMask
    };
    return _RegisterFlags("nxOrderTransactionBroadcastBitMask", flags);
}

std::string nxOrderTransactionBroadcastBitMask::GetClassName() const { return "nxOrderTransactionBroadcastBitMask"; }
