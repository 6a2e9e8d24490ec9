#include "core/enum/nxAttributeTrendBitMask.h"

const bool nxAttributeTrendBitMask::_registered = _RegisterValues();

bool nxAttributeTrendBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxAttributeTrendBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAttributeTrendBitMask
    };
    return _RegisterFlags("nxAttributeTrendBitMask", flags);
}

std::string nxAttributeTrendBitMask::GetClassName() const { return "nxAttributeTrendBitMask"; }
