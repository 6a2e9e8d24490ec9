#include "core/enum/nxServerCapabilityBitMask.h"

const bool nxServerCapabilityBitMask::_registered = _RegisterValues();

bool nxServerCapabilityBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxServerCapabilityBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxServerCapabilityBitMask
    };
    return _RegisterFlags("nxServerCapabilityBitMask", flags);
}

std::string nxServerCapabilityBitMask::GetClassName() const { return "nxServerCapabilityBitMask"; }
