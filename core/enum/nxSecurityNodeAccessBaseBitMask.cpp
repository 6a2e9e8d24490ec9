#include "core/enum/nxSecurityNodeAccessBaseBitMask.h"

const bool nxSecurityNodeAccessBaseBitMask::_registered = _RegisterValues();

bool nxSecurityNodeAccessBaseBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxSecurityNodeAccessBaseBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxSecurityNodeAccessBaseBitMask
    };
    return _RegisterFlags("nxSecurityNodeAccessBaseBitMask", flags);
}

std::string nxSecurityNodeAccessBaseBitMask::GetClassName() const { return "nxSecurityNodeAccessBaseBitMask"; }
