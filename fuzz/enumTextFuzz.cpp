// SPDX-License-Identifier: Apache-2.0
// Outside text into enumerations, and outside words into masks: nothing but a registered identifier is taken, and what
// is printed leads back to what was stored.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

#include "core/nxCore.h"

namespace
{
void Expect(bool isTrue)
{
    if (!isTrue)
        std::abort();
}

template <class Enum>
void ParseAndPrint(std::string_view text)
{
    const Enum before(Enum::MinimumValue + 1);
    Enum value(before);
    if (value.SetFromString(text))
        Expect(value.GetShortDescription() == text && (value.IsSpecificTypeForInstance() || value.GetValue() <= 2));
    else
        Expect(value == before || value.IsUndefined());
    Enum again(before);
    again.SetFromString(std::string(text));
    Expect(again == value);
}

template <class Mask>
void Print(typename Mask::Word word, const std::string& separator)
{
    Mask mask(word);
    const std::string text = mask.GetShortDescription(separator);
    Expect(mask.IsNull() ? text == "Null" : mask.IsNoChange() ? text == "No Change" : word != 0 || text.empty());
    mask.GetLongDescription(separator);
    mask.SetBits(word);
    Expect(mask.AreAllBitsSet(word));
    mask.ClearBits(word);
    Expect(!mask.AreAnyBitsSet(word));
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The buffer has exactly this size, so that a read past its end is seen.
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    ParseAndPrint<nxErrorEnum>(input);
    ParseAndPrint<nxBoolEnum>(input);
    ParseAndPrint<nxLogLevelEnum>(input);
    ParseAndPrint<nxGenericEnum>(input);

    unsigned long long word = 0;
    if (size < sizeof word)
        return 0;
    std::memcpy(&word, data, sizeof word);
    const std::string separator(input.substr(sizeof word, 16));
    Print<nxServerCapabilityBitMask>(word, separator);
    Print<nxUserNodeDefinitionFieldsBitMask>(word, separator);
    Print<nxProductStateBitMask>(static_cast<unsigned>(word), separator);
    Print<nxUserOrderFlagsBitMask>(static_cast<unsigned>(word), separator);
    Print<nxGenericDataAccessLevelBaseBitMask>(static_cast<unsigned>(word), separator);
    const std::string binary = nxGenericBitMask64(word).GetShortDescription();
    Expect(word == std::strtoull(binary.c_str(), nullptr, 2));
    const nxErrorEnum error(static_cast<unsigned>(word));
    Expect(!error.GetShortDescription().empty());
    return 0;
}
