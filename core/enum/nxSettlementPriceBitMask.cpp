#include "core/enum/nxSettlementPriceBitMask.h"

const bool nxSettlementPriceBitMask::_registered = _RegisterValues();

bool nxSettlementPriceBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxSettlementPriceBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxSettlementPriceBitMask
    };
    return _RegisterFlags("nxSettlementPriceBitMask", flags);
}

std::string nxSettlementPriceBitMask::GetClassName() const { return "nxSettlementPriceBitMask"; }
