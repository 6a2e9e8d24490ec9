#include "core/enum/nxIntraDayProductDefinitionUpdateBitMask.h"

const bool nxIntraDayProductDefinitionUpdateBitMask::_registered = _RegisterValues();

bool nxIntraDayProductDefinitionUpdateBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxIntraDayProductDefinitionUpdateBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxIntraDayProductDefinitionUpdateBitMask
    };
    return _RegisterFlags("nxIntraDayProductDefinitionUpdateBitMask", flags);
}

std::string nxIntraDayProductDefinitionUpdateBitMask::GetClassName() const
{
    return "nxIntraDayProductDefinitionUpdateBitMask";
}
