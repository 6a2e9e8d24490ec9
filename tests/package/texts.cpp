// SPDX-License-Identifier: Apache-2.0
// Prints every text that programs, users' files and support desks rely on: enumerations, flags, settings. The agreed texts
// are in texts.txt. The catalogue of tick tables is compared with docs/tick-tables.md in the same way.

#include <iostream>

#include "core/nxCore.h"

namespace
{
template <class Base>
struct Masks : Base
{
    static void Print()
    {
        for (const auto& [name, flags] : Base::_GetDescriptionMap())
        {
            std::cout << '\n' << name << '\n';
            for (const auto& [word, texts] : flags)
                std::cout << word << ' ' << texts.first << ": " << texts.second << '\n';
        }
    }
};

template <class Enum>
void PrintBounds()
{
    std::cout << Enum().GetClassName() << ' ' << Enum::MinimumValue << " to " << Enum::MaximumValue << '\n';
}

// Every value of a class except "not registered", which no object holds.
template <class Enum>
void PrintValues()
{
    std::vector<nxEnumValue> values;
    Enum().GetRegisteredEnumValuesForInstance(values);
    for (const nxEnumValue value : values)
        if (const Enum held(value); held == value)
            std::cout << held.GetValue() << ' ' << held.GetShortDescription() << ": " << held.GetLongDescription()
                      << '\n';
}
}  // namespace

int main()
{
    PrintBounds<nxGenericEnum>();
    PrintBounds<nxErrorEnum>();
    PrintBounds<nxBoolEnum>();
    PrintBounds<nxWorkpaceGroupTypeEnum>();
    PrintBounds<nxAPIConnectionTypeEnum>();
    PrintBounds<nxRoundingMethodEnum>();
    PrintBounds<nxValueStatusEnum>();
    PrintBounds<nxCaseSensitivityEnum>();
    PrintBounds<nxLogLevelEnum>();
    PrintValues<nxGenericEnum>();
    PrintValues<nxErrorEnum>();
    Masks<nxBitMask>::Print();
    Masks<nxBitMask64>::Print();
    for (const char* const key : nxConfigurationKeys)
        std::cout << key << '\n';
}
