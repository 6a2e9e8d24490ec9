#include "core/enum/nxProductStateBitMask.h"

const bool nxProductStateBitMask::_registered = _RegisterValues();

bool nxProductStateBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxProductStateBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductStateBitMask
    };
    return _RegisterFlags("nxProductStateBitMask", flags);
}

std::string nxProductStateBitMask::GetClassName() const { return "nxProductStateBitMask"; }
