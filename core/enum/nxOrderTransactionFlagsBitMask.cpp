#include "core/enum/nxOrderTransactionFlagsBitMask.h"

const bool nxOrderTransactionFlagsBitMask::_registered = _RegisterValues();

bool nxOrderTransactionFlagsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxOrderTransactionFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderTransactionFlagsBitMask
    };
    return _RegisterFlags("nxOrderTransactionFlagsBitMask", flags);
}

std::string nxOrderTransactionFlagsBitMask::GetClassName() const { return "nxOrderTransactionFlagsBitMask"; }
