// SPDX-License-Identifier: Apache-2.0
#include "core/enum/nxGenericBitMask.h"

#include <string>

std::string nxGenericBitMask::GetClassName() const { return "nxGenericBitMask"; }

std::string nxGenericBitMask::GetShortDescription() const
{
    std::string result;
    for (Word rest = GetValue(); rest != 0; rest >>= 1)
        result.insert(result.begin(), (rest & 1) != 0 ? '1' : '0');
    return result;
}

std::string nxGenericBitMask::GetLongDescription() const { return GetShortDescription(); }
