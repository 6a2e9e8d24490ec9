#include "core/enum/nxAttributeChangeBitMask.h"

const bool nxAttributeChangeBitMask::_registered = _RegisterValues();

bool nxAttributeChangeBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxAttributeChangeBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeChangeBitMask
    };
    return _RegisterFlags("nxAttributeChangeBitMask", flags);
}

std::string nxAttributeChangeBitMask::GetClassName() const { return "nxAttributeChangeBitMask"; }
