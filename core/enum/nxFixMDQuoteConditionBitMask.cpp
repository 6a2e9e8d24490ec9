#include "core/enum/nxFixMDQuoteConditionBitMask.h"

const bool nxFixMDQuoteConditionBitMask::_registered = _RegisterValues();

bool nxFixMDQuoteConditionBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxFixMDQuoteConditionBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxFixMDQuoteConditionBitMask
    };
    return _RegisterFlags("nxFixMDQuoteConditionBitMask", flags);
}

std::string nxFixMDQuoteConditionBitMask::GetClassName() const { return "nxFixMDQuoteConditionBitMask"; }
