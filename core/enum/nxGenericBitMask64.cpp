// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxGenericBitMask64.h"

#include <string>

std::string nxGenericBitMask64::GetClassName() const { return "nxGenericBitMask64"; }

std::string nxGenericBitMask64::GetShortDescription() const
{
    std::string result;
    for (Word rest = GetValue(); rest != 0; rest >>= 1)
        result.insert(result.begin(), (rest & 1) != 0 ? '1' : '0');
    return result;
}

std::string nxGenericBitMask64::GetLongDescription() const { return GetShortDescription(); }
