#include "core/enum/nxProductFlagBitMask.h"

const bool nxProductFlagBitMask::_registered = _RegisterValues();

bool nxProductFlagBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxProductFlagBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductFlagBitMask
    };
    return _RegisterFlags("nxProductFlagBitMask", flags);
}

std::string nxProductFlagBitMask::GetClassName() const { return "nxProductFlagBitMask"; }
