#include "core/enum/nxFixMDTradeConditionBitMask.h"

const bool nxFixMDTradeConditionBitMask::_registered = _RegisterValues();

bool nxFixMDTradeConditionBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxFixMDTradeConditionBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxFixMDTradeConditionBitMask
    };
    return _RegisterFlags("nxFixMDTradeConditionBitMask", flags);
}

std::string nxFixMDTradeConditionBitMask::GetClassName() const { return "nxFixMDTradeConditionBitMask"; }
