#include "core/enum/nxGenericDataAccessLevelBaseBitMask.h"

const bool nxGenericDataAccessLevelBaseBitMask::_registered = _RegisterValues();

bool nxGenericDataAccessLevelBaseBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxGenericDataAccessLevelBaseBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxGenericDataAccessLevelBaseBitMask
    };
    return _RegisterFlags("nxGenericDataAccessLevelBaseBitMask", flags);
}

std::string nxGenericDataAccessLevelBaseBitMask::GetClassName() const { return "nxGenericDataAccessLevelBaseBitMask"; }
