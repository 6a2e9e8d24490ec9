#include "core/enum/nxExtendedAttributeHighlightBitMask.h"

const bool nxExtendedAttributeHighlightBitMask::_registered = _RegisterValues();

bool nxExtendedAttributeHighlightBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxExtendedAttributeHighlightBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxExtendedAttributeHighlightBitMask
    };
    return _RegisterFlags("nxExtendedAttributeHighlightBitMask", flags);
}

std::string nxExtendedAttributeHighlightBitMask::GetClassName() const { return "nxExtendedAttributeHighlightBitMask"; }
