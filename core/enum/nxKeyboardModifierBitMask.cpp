#include "core/enum/nxKeyboardModifierBitMask.h"

const bool nxKeyboardModifierBitMask::_registered = _RegisterValues();

bool nxKeyboardModifierBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxKeyboardModifierBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxKeyboardModifierBitMask
    };
    return _RegisterFlags("nxKeyboardModifierBitMask", flags);
}

std::string nxKeyboardModifierBitMask::GetClassName() const { return "nxKeyboardModifierBitMask"; }
