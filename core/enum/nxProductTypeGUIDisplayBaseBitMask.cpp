#include "core/enum/nxProductTypeGUIDisplayBaseBitMask.h"

const bool nxProductTypeGUIDisplayBaseBitMask::_registered = _RegisterValues();

bool nxProductTypeGUIDisplayBaseBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxProductTypeGUIDisplayBaseBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductTypeGUIDisplayBaseBitMask
    };
    return _RegisterFlags("nxProductTypeGUIDisplayBaseBitMask", flags);
}

std::string nxProductTypeGUIDisplayBaseBitMask::GetClassName() const { return "nxProductTypeGUIDisplayBaseBitMask"; }
