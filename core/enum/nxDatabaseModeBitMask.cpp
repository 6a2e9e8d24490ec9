#include "core/enum/nxDatabaseModeBitMask.h"

const bool nxDatabaseModeBitMask::_registered = _RegisterValues();

bool nxDatabaseModeBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxDatabaseModeBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxDatabaseModeBitMask
    };
    return _RegisterFlags("nxDatabaseModeBitMask", flags);
}

std::string nxDatabaseModeBitMask::GetClassName() const { return "nxDatabaseModeBitMask"; }
