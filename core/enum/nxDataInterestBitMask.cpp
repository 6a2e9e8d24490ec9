#include "core/enum/nxDataInterestBitMask.h"

const bool nxDataInterestBitMask::_registered = _RegisterValues();

bool nxDataInterestBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxDataInterestBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxDataInterestBitMask
    };
    return _RegisterFlags("nxDataInterestBitMask", flags);
}

std::string nxDataInterestBitMask::GetClassName() const { return "nxDataInterestBitMask"; }
