#include "core/enum/nxUserOrderFlagsBitMask.h"

const bool nxUserOrderFlagsBitMask::_registered = _RegisterValues();

bool nxUserOrderFlagsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxUserOrderFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxUserOrderFlagsBitMask
    };
    return _RegisterFlags("nxUserOrderFlagsBitMask", flags);
}

std::string nxUserOrderFlagsBitMask::GetClassName() const { return "nxUserOrderFlagsBitMask"; }
