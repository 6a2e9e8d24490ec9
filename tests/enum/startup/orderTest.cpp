// SPDX-License-Identifier: Apache-2.0
// Built from the sources of the library, so that the object below is initialised before their objects and destroyed after
// them. It must find every text in both places.
#include <cstdio>
#include <cstdlib>

#include "core/enum/nxBoolEnum.h"
#include "core/enum/nxErrorEnum.h"

namespace
{
bool IsComplete()
{
    nxErrorEnum parsed;
    std::vector<nxEnumValue> values;
    nxErrorEnum().GetRegisteredEnumValuesForInstance(values);
    return nxErrorEnum(1000112).GetShortDescription() == "NOT_REGISTERED" &&
           nxErrorEnum(NX_ERR_NOT_FOUND).GetLongDescription() == "not found" &&
           parsed.SetFromString("NX_ERR_NO_MATCH") && parsed == NX_ERR_NO_MATCH &&
           nxEnum::IsRegisteredEnumValue(NX_BOOL_TRUE) && values.size() == 581 && nxRefusedTexts::Get().empty();
}

struct EarlyAndLate
{
    EarlyAndLate() : wasComplete(IsComplete()) {}
    ~EarlyAndLate()
    {
        if (!wasComplete || !IsComplete())
        {
            std::fputs("a text was missing or refused before or after main\n", stderr);
            std::_Exit(1);
        }
    }
    bool wasComplete;
};

[[gnu::init_priority(101)]] const EarlyAndLate earlyAndLate;
}  // namespace

int main() { return IsComplete() ? 0 : 1; }
