// SPDX-License-Identifier: Apache-2.0
#include "core/text/nxDoubleValueWrapper.h"

#include <cmath>
#include <limits>
#include <ostream>

#include "core/text/nxStringHelper.h"

namespace
{
// Both give NaN, which is refused, when the result is no double.
constexpr double noDouble = std::numeric_limits<double>::quiet_NaN();

double AddWithoutRounding(double a, double b)
{
    const double larger = std::fabs(a) >= std::fabs(b) ? a : b;
    const double smaller = larger == a ? b : a;
    // The difference of a sum and its larger operand is exact in every direction of rounding.
    const double sum = larger + smaller;
    return sum - larger == smaller ? sum : noDouble;
}

double MultiplyWithoutRounding(double a, double b)
{
    // Fractions from 0.5 to 1: neither their product nor its error is too small for a double.
    int exponentOfA = 0;
    int exponentOfB = 0;
    const double fractionOfA = std::frexp(a, &exponentOfA);
    const double fractionOfB = std::frexp(b, &exponentOfB);
    const double fraction = fractionOfA * fractionOfB;
    if (std::fma(fractionOfA, fractionOfB, -fraction) != 0)
        return noDouble;
    const int exponent = exponentOfA + exponentOfB;
    const double product = std::ldexp(fraction, exponent);
    // A very small product may have lost bits.
    return std::ldexp(product, -exponent) == fraction ? product : noDouble;
}
}  // namespace

nxErrorEnum nxDoubleValueWrapper::_Take(double number)
{
    if (!nxDoubleHelper::IsFinite(number) || !nxDoubleValueWrapper(number).IsValid())
        return nxErrorEnum(NX_ERR_VALUE_OUT_OF_RANGE);
    _value = number;
    return nxErrorEnum();
}

nxErrorEnum nxDoubleValueWrapper::AddExact(const nxDoubleValueWrapper& other)
{
    if (!IsValid() || !other.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    return _Take(AddWithoutRounding(_value, other._value));
}

nxErrorEnum nxDoubleValueWrapper::SubtractExact(const nxDoubleValueWrapper& other)
{
    if (!IsValid() || !other.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    return _Take(AddWithoutRounding(_value, -other._value));
}

nxErrorEnum nxDoubleValueWrapper::MultiplyExact(const nxDoubleValueWrapper& other)
{
    if (!IsValid() || !other.IsValid())
        return nxErrorEnum(NX_ERR_OBJECT_IS_NULL);
    return _Take(MultiplyWithoutRounding(_value, other._value));
}

nxErrorEnum nxDoubleValueWrapper::SetFromString(const std::string& text)
{
    nxErrorEnum error = nxStringHelper::SetFromString(text, _value, '.');
    if (!error.IsOK())
        SetNull();
    return error;
}

nxErrorEnum nxDoubleValueWrapper::SetFromString(const char* text)
{
    return SetFromString(nxStringHelper::GetAsString(text));
}

nxErrorEnum nxDoubleValueWrapper::SetFromStringExact(std::string_view text)
{
    double number = 0;
    const nxErrorEnum error = nxStringHelper::SetFromStringExact(text, number, '.');
    return error.IsOK() ? _Take(number) : error;
}

nxErrorEnum nxDoubleValueWrapper::SetFromStringExact(const char* text)
{
    return SetFromStringExact(text != nullptr ? std::string_view(text) : std::string_view());
}

std::string nxDoubleValueWrapper::GetAsString() const
{
    return IsValid() ? nxStringHelper::GetAsString(_value) : std::string();
}

std::string nxDoubleValueWrapper::GetAsLogString() const
{
    return IsNoChange() ? "NO_CHANGE" : nxStringHelper::GetAsString(_value);
}

void nxDoubleValueWrapper::AppendAsString(std::string& out) const { out.append(GetAsString()); }

void nxDoubleValueWrapper::AppendAsLogString(std::string& out) const { out.append(GetAsLogString()); }

std::ostream& operator<<(std::ostream& stream, const nxDoubleValueWrapper& value)
{
    return stream << value.GetAsLogString();
}

void nxStringHelper::AppendAsString(std::string& out, const nxDoubleValueWrapper& value) { value.AppendAsString(out); }

std::string nxStringHelper::GetAsString(const nxDoubleValueWrapper& value) { return value.GetAsString(); }
