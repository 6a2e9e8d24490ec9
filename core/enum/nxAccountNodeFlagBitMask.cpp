#include "core/enum/nxAccountNodeFlagBitMask.h"

const bool nxAccountNodeFlagBitMask::_registered = _RegisterValues();

bool nxAccountNodeFlagBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxAccountNodeFlagBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAccountNodeFlagBitMask
    };
    return _RegisterFlags("nxAccountNodeFlagBitMask", flags);
}

std::string nxAccountNodeFlagBitMask::GetClassName() const { return "nxAccountNodeFlagBitMask"; }
