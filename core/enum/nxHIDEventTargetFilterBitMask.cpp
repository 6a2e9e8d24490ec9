#include "core/enum/nxHIDEventTargetFilterBitMask.h"

const bool nxHIDEventTargetFilterBitMask::_registered = _RegisterValues();

bool nxHIDEventTargetFilterBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxHIDEventTargetFilterBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxHIDEventTargetFilterBitMask
    };
    return _RegisterFlags("nxHIDEventTargetFilterBitMask", flags);
}

std::string nxHIDEventTargetFilterBitMask::GetClassName() const { return "nxHIDEventTargetFilterBitMask"; }
