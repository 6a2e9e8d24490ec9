#include "core/enum/nxDataObjectCacheObserverBitMask.h"

const bool nxDataObjectCacheObserverBitMask::_registered = _RegisterValues();

bool nxDataObjectCacheObserverBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxDataObjectCacheObserverBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxDataObjectCacheObserverBitMask
    };
    return _RegisterFlags("nxDataObjectCacheObserverBitMask", flags);
}

std::string nxDataObjectCacheObserverBitMask::GetClassName() const { return "nxDataObjectCacheObserverBitMask"; }
