#include "core/enum/nxProductTreeSelectableNodeBaseBitMask.h"

const bool nxProductTreeSelectableNodeBaseBitMask::_registered = _RegisterValues();

bool nxProductTreeSelectableNodeBaseBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxProductTreeSelectableNodeBaseBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxProductTreeSelectableNodeBaseBitMask
    };
    return _RegisterFlags("nxProductTreeSelectableNodeBaseBitMask", flags);
}

std::string nxProductTreeSelectableNodeBaseBitMask::GetClassName() const
{
    return "nxProductTreeSelectableNodeBaseBitMask";
}
