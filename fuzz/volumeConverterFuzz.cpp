// SPDX-License-Identifier: Apache-2.0
// Volume converters: what is read is written and read again as the same units; an abbreviated text never shows more than there
// is. The input is a byte that chooses the converter, the units as eight bytes, and a text.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

#include "core/price/nxAbbreviatedVolumeConverter.h"
#include "core/price/nxLotVolumeConverter.h"
#include "core/price/nxScaledVolumeConverter.h"

namespace
{
typedef nxVolumeConverter::Units Units;
using Short = nxAbbreviatedVolumeConverter;

void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckText(const nxVolumeConverter& exact, const nxVolumeConverter& converter, std::string_view text)
{
    Units units = 7, again;
    if (!converter.SetFromStringView(text, units, '.').IsOK())
    {
        Require(units == 7);
        return;
    }
    Require(exact.SetFromString(exact.GetAsString(units, '.'), again, '.').IsOK());
    Require(units == again);
    nxDecimal quantity;
    if (exact.GetAsQuantity(units, quantity).IsOK())
        Require(converter.GetAsUnits(quantity, again).IsOK() && units == again);
}

// What a screen shows is at most what there is, as far as it is a whole number of units and not too large.
void CheckUnits(const nxVolumeConverter& exact, const nxVolumeConverter& converter, const Units& units)
{
    char buffer[nxVolumeConverter::MaxTextSize];
    const std::size_t size = converter.GetAsString(buffer, units, '.');
    Require(size < sizeof buffer && buffer[size] == '\0' && (size != 0) == units.IsValid());
    Units shown;
    if (converter.SetFromStringView({buffer, size}, shown, '.').IsOK())
        Require(shown <= units);
    const std::string text = exact.GetAsString(units, '.');
    if (units.IsValid())
        Require(exact.SetFromString(text, shown, '.').IsOK() && shown == units);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const nxVolumeConverter plain;
    static const nxLotVolumeConverter lots(100), oddLots(18446744073709551557u);
    static const nxScaledVolumeConverter coins(8), finest(18);
    static const nxVolumeConverter* const kinds[] = {&plain, &lots, &oddLots, &coins, &finest};
    if (size < 9)
        return 0;
    const nxVolumeConverter& exact = *kinds[(data[0] & 15) % std::size(kinds)];
    const Short converter(exact, (data[0] & 16) != 0 ? Short::Suffixes::MMM : Short::Suffixes::KMBT,
                          static_cast<unsigned char>(1 + (data[0] >> 5) * 5));
    unsigned long long number;
    std::memcpy(&number, data + 1, sizeof number);
    CheckUnits(exact, converter, Units(number));
    // Memory of its own, just large enough: a byte read beside the text is found.
    const std::vector<char> bytes(data + 9, data + size);
    CheckText(exact, converter, {bytes.data(), bytes.size()});
    CheckText(exact, exact, {bytes.data(), bytes.size()});
    return 0;
}
