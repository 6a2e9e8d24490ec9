// SPDX-License-Identifier: Apache-2.0
// Doubles: any text with any separator against the rule one digit at a time, and any bits as text, with any number of
// decimals, against the exact value.

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <system_error>

#include "core/text/nxDoubleValueWrapper.h"
#include "core/text/nxStringHelper.h"
#include "tests/text/nxDoubleTextOracle.h"

namespace
{
void Require(bool holds)
{
    if (!holds)
        std::abort();
}

void CheckReading(const std::string& text, char separator)
{
    double expected = 42;
    double value = 42;
    Require(nxStringHelper::SetFromString(text, value, separator).IsOK() ==
            nxDoubleTextOracle::Read(text, separator, expected));
    Require(std::bit_cast<std::uint64_t>(value) == std::bit_cast<std::uint64_t>(expected) ||
            (std::isnan(value) && std::isnan(expected)));

    double exact = 42;
    double nearest = 42;
    const std::errc error = nxDoubleTextOracle::ReadExact(text, separator, nearest);
    Require(nxStringHelper::SetFromStringExact(text, exact, separator) ==
            (error == std::errc()                   ? nxErrorEnum()
             : error == std::errc::invalid_argument ? nxErrorEnum(NX_ERR_INVALID_PARAMETER)
                                                    : nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE)));
    Require(std::bit_cast<std::uint64_t>(exact) == std::bit_cast<std::uint64_t>(nearest));
}

void CheckRoundTrip(double value)
{
    const std::string text = nxStringHelper::GetAsExactString(value);
    double back = 42;
    Require(nxStringHelper::SetFromStringExact(text, back, '.').IsOK() == std::isfinite(value));
    Require(!std::isfinite(value) || std::bit_cast<std::uint64_t>(back) == std::bit_cast<std::uint64_t>(value));
}

void CheckPrinting(double value, unsigned decimals)
{
    const std::string text = nxStringHelper::GetAsString(value, decimals);
    Require(!text.empty() && text.size() <= 21);
    std::string appended = "x";
    nxStringHelper::AppendAsString(appended, value, decimals);
    Require(appended == "x" + text);
    if (!(std::fabs(value) <= 2147483647.0))
        return;
    const std::size_t point = text.find('.');
    Require(point == std::string::npos || (text.back() != '0' && text.back() != '.'));
    Require(point == std::string::npos || text.size() - point - 1 <= decimals);
    // Half a unit of the last decimal, and what the multiplication by the power of ten loses.
    const double unit = std::pow(10.0, -static_cast<double>(decimals < 9 ? decimals : 9));
    Require(std::fabs(std::strtod(text.c_str(), nullptr) - value) <= 0.5 * unit + 1e-15 + std::fabs(value) * 1e-15);
}
}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return 0;
    const std::string text(reinterpret_cast<const char*>(data + 1), size - 1);
    CheckReading(text, static_cast<char>(data[0]));
    CheckReading(text, '.');
    nxDoubleValueWrapper wrapper;
    if (!wrapper.SetFromString(text).IsOK())
        Require(wrapper.IsNull());

    double value = 0;
    std::memcpy(&value, text.data(), text.size() < sizeof value ? text.size() : sizeof value);
    CheckPrinting(value, data[0] % 12);
    CheckRoundTrip(value);
    if (nxStringHelper::SetFromString(text, value, '.').IsOK())
        CheckPrinting(value, data[0] % 12);
    return 0;
}
