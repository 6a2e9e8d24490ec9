#include "core/enum/nxAttributeTreeDrilldownBitMask.h"

const bool nxAttributeTreeDrilldownBitMask::_registered = _RegisterValues();

bool nxAttributeTreeDrilldownBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxAttributeTreeDrilldownBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeTreeDrilldownBitMask
    };
    return _RegisterFlags("nxAttributeTreeDrilldownBitMask", flags);
}

std::string nxAttributeTreeDrilldownBitMask::GetClassName() const { return "nxAttributeTreeDrilldownBitMask"; }
