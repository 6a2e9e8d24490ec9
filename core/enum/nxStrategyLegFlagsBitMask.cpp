#include "core/enum/nxStrategyLegFlagsBitMask.h"

const bool nxStrategyLegFlagsBitMask::_registered = _RegisterValues();

bool nxStrategyLegFlagsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxStrategyLegFlagsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxStrategyLegFlagsBitMask
    };
    return _RegisterFlags("nxStrategyLegFlagsBitMask", flags);
}

std::string nxStrategyLegFlagsBitMask::GetClassName() const { return "nxStrategyLegFlagsBitMask"; }
