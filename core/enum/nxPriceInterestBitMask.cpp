#include "core/enum/nxPriceInterestBitMask.h"

const bool nxPriceInterestBitMask::_registered = _RegisterValues();

bool nxPriceInterestBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxPriceInterestBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxPriceInterestBitMask
    };
    return _RegisterFlags("nxPriceInterestBitMask", flags);
}

std::string nxPriceInterestBitMask::GetClassName() const { return "nxPriceInterestBitMask"; }
