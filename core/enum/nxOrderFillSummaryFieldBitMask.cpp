#include "core/enum/nxOrderFillSummaryFieldBitMask.h"

const bool nxOrderFillSummaryFieldBitMask::_registered = _RegisterValues();

bool nxOrderFillSummaryFieldBitMask::_RegisterValues()
{
    static constexpr FlagTexts flags[] = {
#define NX_FLAGS_nxOrderFillSummaryFieldBitMask
#define NX_FLAG(constant, word, shortDescription, longDescription) {constant, shortDescription, longDescription},
#include "core/enum/nxBitMaskFlags.inc"
#undef NX_FLAG
#undef NX_FLAGS_nxOrderFillSummaryFieldBitMask
    };
    return _RegisterFlags("nxOrderFillSummaryFieldBitMask", flags);
}

std::string nxOrderFillSummaryFieldBitMask::GetClassName() const { return "nxOrderFillSummaryFieldBitMask"; }
