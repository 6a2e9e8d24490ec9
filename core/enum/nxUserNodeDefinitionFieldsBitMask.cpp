#include "core/enum/nxUserNodeDefinitionFieldsBitMask.h"

const bool nxUserNodeDefinitionFieldsBitMask::_registered = _RegisterValues();

bool nxUserNodeDefinitionFieldsBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxUserNodeDefinitionFieldsBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxUserNodeDefinitionFieldsBitMask
    };
    return _RegisterFlags("nxUserNodeDefinitionFieldsBitMask", flags);
}

std::string nxUserNodeDefinitionFieldsBitMask::GetClassName() const { return "nxUserNodeDefinitionFieldsBitMask"; }
