#include "core/enum/nxExchangePriceFilterBitMask.h"

const bool nxExchangePriceFilterBitMask::_registered = _RegisterValues();

bool nxExchangePriceFilterBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxExchangePriceFilterBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxExchangePriceFilterBitMask
    };
    return _RegisterFlags("nxExchangePriceFilterBitMask", flags);
}

std::string nxExchangePriceFilterBitMask::GetClassName() const { return "nxExchangePriceFilterBitMask"; }
