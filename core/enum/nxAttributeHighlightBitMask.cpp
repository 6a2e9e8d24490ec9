#include "core/enum/nxAttributeHighlightBitMask.h"

const bool nxAttributeHighlightBitMask::_registered = _RegisterValues();

bool nxAttributeHighlightBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxAttributeHighlightBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeHighlightBitMask
    };
    return _RegisterFlags("nxAttributeHighlightBitMask", flags);
}

std::string nxAttributeHighlightBitMask::GetClassName() const { return "nxAttributeHighlightBitMask"; }
