// SPDX-License-Identifier: Apache-2.0
// Reading decimals against the oracle, every text form against the oracle's, and what is printed read back. The first
// byte of the input is the separator.

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "core/numeric/nxDecimal.h"
#include "core/text/nxOStream.h"
#include "core/text/nxSimpleAsciiStringWriter.h"
#include "tests/numeric/nxDecimalOracle.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckPrinting(const nxDecimal& value, const nxDecimalOracle& model, char separator)
{
    const auto places = static_cast<unsigned char>(model.mantissa);
    Require(value.GetAsString(separator) == model.Text(separator, 255));
    Require(value.GetAsTrimmedString(places, separator) == model.Text(separator, places));
    nxOStream<nxSimpleAsciiStringWriter> stream;
    value.Write(stream, separator);
    Require(stream.GetWriter().GetText() == model.Written(separator));

    // A text that shows the whole number reads back as that number, unless the separator looks like a part of it.
    const bool isPlain = separator != '-' && separator != '+' && (separator < '0' || separator > '9');
    if (isPlain && model.places <= nxDecimal::MaxTextPlaces)
    {
        const nxDecimal back(value.GetAsString(separator), separator);
        Require(nxDecimalOracle(back).mantissa == model.mantissa && nxDecimalOracle(back).places == model.places);
    }
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const char separator = static_cast<char>(data[0]);
    // Memory of its own, just large enough: a byte read beside the text is found.
    const std::vector<char> bytes(data + 1, data + size);
    const std::string_view text(bytes.data(), bytes.size());

    nxDecimalOracle model(77, 1);
    nxDecimal value = nxDecimal::ConstructFromValueAndDecimalPlaces(77, 1);
    const bool isNumber = model.SetFromText(text, separator);
    Require(value.SetFromStringView(text, separator).IsOK() == isNumber);
    Require(model.Matches(value));
    Require(nxDecimal(std::string(text), separator).IsValid() == isNumber);
    CheckPrinting(value, model, separator);

    nxDecimalOracle exactModel(77, 1);
    nxDecimal exact = nxDecimal::ConstructFromValueAndDecimalPlaces(77, 1);
    Require(exact.SetFromStringExact(text, separator) == exactModel.SetFromTextExact(text, separator));
    Require(exactModel.Matches(exact));
    Require(exact.GetAsExactString(separator) == exactModel.ExactText(separator));
    return 0;
}
