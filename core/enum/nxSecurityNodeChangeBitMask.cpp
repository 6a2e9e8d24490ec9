#include "core/enum/nxSecurityNodeChangeBitMask.h"

const bool nxSecurityNodeChangeBitMask::_registered = _RegisterValues();

bool nxSecurityNodeChangeBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxSecurityNodeChangeBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxSecurityNodeChangeBitMask
    };
    return _RegisterFlags("nxSecurityNodeChangeBitMask", flags);
}

std::string nxSecurityNodeChangeBitMask::GetClassName() const { return "nxSecurityNodeChangeBitMask"; }
