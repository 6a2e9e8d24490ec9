#include "core/enum/nxAccountNodeDefinitionFieldsBitMask.h"

const bool nxAccountNodeDefinitionFieldsBitMask::_registered = _RegisterValues();

bool nxAccountNodeDefinitionFieldsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxAccountNodeDefinitionFieldsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxAccountNodeDefinitionFieldsBitMask
    };
    return _RegisterFlags("nxAccountNodeDefinitionFieldsBitMask", flags);
}

std::string nxAccountNodeDefinitionFieldsBitMask::GetClassName() const
{
    return "nxAccountNodeDefinitionFieldsBitMask";
}
