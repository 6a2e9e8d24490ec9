#include "core/enum/nxConditionalOrderFlagsBitMask.h"

const bool nxConditionalOrderFlagsBitMask::_registered = _RegisterValues();

bool nxConditionalOrderFlagsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxConditionalOrderFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxConditionalOrderFlagsBitMask
    };
    return _RegisterFlags("nxConditionalOrderFlagsBitMask", flags);
}

std::string nxConditionalOrderFlagsBitMask::GetClassName() const { return "nxConditionalOrderFlagsBitMask"; }
