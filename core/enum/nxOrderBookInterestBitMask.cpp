#include "core/enum/nxOrderBookInterestBitMask.h"

const bool nxOrderBookInterestBitMask::_registered = _RegisterValues();

bool nxOrderBookInterestBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxOrderBookInterestBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderBookInterestBitMask
    };
    return _RegisterFlags("nxOrderBookInterestBitMask", flags);
}

std::string nxOrderBookInterestBitMask::GetClassName() const { return "nxOrderBookInterestBitMask"; }
